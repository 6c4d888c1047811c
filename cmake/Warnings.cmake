# Warnings as errors for our own targets only (not for GoogleTest built
# from source on the Windows targets).
add_library(tbxutl_warnings INTERFACE)
target_compile_options(tbxutl_warnings INTERFACE -Wall -Wextra -Werror)
