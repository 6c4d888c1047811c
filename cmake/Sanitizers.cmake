# TBXUTL_SANITIZE=address,undefined (or thread) instruments every target of
# the build, so that the library and its tests are checked together.
if(TBXUTL_SANITIZE)
  if(WIN32)
    message(FATAL_ERROR "Sanitizers are only supported on the Linux build")
  endif()
  set(TBXUTL_SANITIZE_FLAGS -fsanitize=${TBXUTL_SANITIZE} -fno-omit-frame-pointer)
  if(TBXUTL_SANITIZE MATCHES "undefined")
    list(APPEND TBXUTL_SANITIZE_FLAGS -fno-sanitize-recover=undefined)
  endif()
  add_compile_options(${TBXUTL_SANITIZE_FLAGS})
  add_link_options(${TBXUTL_SANITIZE_FLAGS})
endif()
