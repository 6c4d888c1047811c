#pragma once
// Identifiers of the library's string resources. The resource scripts
// (tbxutl_strings.rc, the language libraries in lang/) include this file as
// well as C++ code, so it holds nothing but #define lines.
//
// The library's own texts (English) are built into the library; the language
// resource library TbxUtlIntl.dll holds the translated ones.

// Application name and second name, separated by a line break.
#define IDS_UTL_APP_NAME 1000

// The fatal-error box. The format takes, in this order, the text (%s), the
// error code (%d), the source module (%s) and the line (%d).
#define IDS_UTL_FATAL_ERROR_FORMAT 24007
#define IDS_UTL_FATAL_ERROR_CAPTION 24008  // caption when a caption choice is given
#define IDS_UTL_ERROR_CAPTION 24009        // caption otherwise
#define IDS_UTL_FATAL_ERROR_TEXT 24010     // the text when none is given
// Fatal error reported by code only; the format takes the code (%u).
#define IDS_UTL_FATAL_ERROR_CODE 24226

// Features that are not ready: text and caption.
#define IDS_UTL_NOT_READY_TEXT 24190
#define IDS_UTL_NOT_READY_CAPTION 24191

// The XML document service could not be created; takes its message (%s).
#define IDS_UTL_XML_SERVICE_FAILED 23840

// Workspaces: the network folder is missing (takes the folder, %s), and the
// question whether to reset the workspaces.
#define IDS_UTL_WS_NETWORK_DIR_MISSING 24192
#define IDS_UTL_WS_RESET_QUESTION 24193

// Symbols of the equation tokens.
#define IDS_UTL_TOKEN_MINUS 24087
#define IDS_UTL_TOKEN_PLUS 24088
#define IDS_UTL_TOKEN_MULTIPLY 24089
#define IDS_UTL_TOKEN_DIVIDE 24090
#define IDS_UTL_TOKEN_POWER 24091
#define IDS_UTL_TOKEN_OPEN_BRACKET 24092
#define IDS_UTL_TOKEN_CLOSE_BRACKET 24093
#define IDS_UTL_TOKEN_OPEN_PAREN 24094
#define IDS_UTL_TOKEN_CLOSE_PAREN 24095
#define IDS_UTL_TOKEN_OPEN_BRACE 24096
#define IDS_UTL_TOKEN_CLOSE_BRACE 24097
#define IDS_UTL_TOKEN_LOG 24172
#define IDS_UTL_TOKEN_LN 24173
#define IDS_UTL_TOKEN_SQRT 24174
#define IDS_UTL_TOKEN_SIN 24175
#define IDS_UTL_TOKEN_COS 24176
#define IDS_UTL_TOKEN_TAN 24177
#define IDS_UTL_TOKEN_ASIN 24178
#define IDS_UTL_TOKEN_ACOS 24179
#define IDS_UTL_TOKEN_ATAN 24180
#define IDS_UTL_TOKEN_SINH 24181
#define IDS_UTL_TOKEN_COSH 24182
#define IDS_UTL_TOKEN_TANH 24183
#define IDS_UTL_TOKEN_CSC 24184
#define IDS_UTL_TOKEN_SEC 24185
#define IDS_UTL_TOKEN_COT 24186
#define IDS_UTL_TOKEN_ACSC 24187
#define IDS_UTL_TOKEN_ASEC 24188
#define IDS_UTL_TOKEN_ACOT 24189

// Units of measure: name, second (plural) name, abbreviation and, for some,
// a symbol.
#define IDS_UTL_UNIT_INCHES 24016
#define IDS_UTL_UNIT_INCH 24017
#define IDS_UTL_UNIT_INCH_ABBR 24018
#define IDS_UTL_UNIT_INCH_SYMBOL 24065
#define IDS_UTL_UNIT_MILLIMETERS 24019
#define IDS_UTL_UNIT_MILLIMETER 24020
#define IDS_UTL_UNIT_MILLIMETER_ABBR 24021
#define IDS_UTL_UNIT_POINTS 24025
#define IDS_UTL_UNIT_POINT 24026
#define IDS_UTL_UNIT_POINT_ABBR 24027
#define IDS_UTL_UNIT_CENTIMETERS 24028
#define IDS_UTL_UNIT_CENTIMETER 24029
#define IDS_UTL_UNIT_CENTIMETER_ABBR 24030
#define IDS_UTL_UNIT_PIXELS 24031
#define IDS_UTL_UNIT_PIXEL 24032
#define IDS_UTL_UNIT_PIXEL_ABBR 24033
#define IDS_UTL_UNIT_FEET 24034
#define IDS_UTL_UNIT_FOOT 24035
#define IDS_UTL_UNIT_FOOT_ABBR 24036
#define IDS_UTL_UNIT_FOOT_SYMBOL 24066
#define IDS_UTL_UNIT_MILES 24037
#define IDS_UTL_UNIT_MILE 24038
#define IDS_UTL_UNIT_MILE_ABBR 24039
#define IDS_UTL_UNIT_METERS 24040
#define IDS_UTL_UNIT_METER 24041
#define IDS_UTL_UNIT_METER_ABBR 24042
#define IDS_UTL_UNIT_KILOMETERS 24043
#define IDS_UTL_UNIT_KILOMETER 24044
#define IDS_UTL_UNIT_KILOMETER_ABBR 24045
#define IDS_UTL_UNIT_DEGREES 24046
#define IDS_UTL_UNIT_DEGREE 24047
#define IDS_UTL_UNIT_DEGREE_ABBR 24048
#define IDS_UTL_UNIT_DEGREE_SYMBOL 24067
#define IDS_UTL_UNIT_DIDOTS 24052
#define IDS_UTL_UNIT_DIDOT 24053
#define IDS_UTL_UNIT_DIDOT_ABBR 24054
#define IDS_UTL_UNIT_AGATES 24055  // 1/14 inch
#define IDS_UTL_UNIT_AGATE 24056
#define IDS_UTL_UNIT_AGATE_ABBR 24057
#define IDS_UTL_UNIT_YARDS 24061
#define IDS_UTL_UNIT_YARD 24062
#define IDS_UTL_UNIT_YARD_ABBR 24063
#define IDS_UTL_UNIT_PICA 24070
#define IDS_UTL_UNIT_PICAS 24071
#define IDS_UTL_UNIT_PICA_ABBR 24072
#define IDS_UTL_UNIT_CICERO 24073
#define IDS_UTL_UNIT_CICEROS 24074
#define IDS_UTL_UNIT_CICERO_ABBR 24075
#define IDS_UTL_UNIT_MINUTE 24076
#define IDS_UTL_UNIT_MINUTES 24077
#define IDS_UTL_UNIT_MINUTE_ABBR 24078
#define IDS_UTL_UNIT_MINUTE_SYMBOL 24079
#define IDS_UTL_UNIT_SECOND 24080
#define IDS_UTL_UNIT_SECONDS 24081
#define IDS_UTL_UNIT_SECOND_ABBR 24082
#define IDS_UTL_UNIT_SECOND_SYMBOL 24083
#define IDS_UTL_UNIT_NUMBER 24084
#define IDS_UTL_UNIT_NUMBERS 24085
#define IDS_UTL_UNIT_NUMBER_ABBR 24086
#define IDS_UTL_UNIT_CICEROS_2 24206  // the second cicero unit
#define IDS_UTL_UNIT_CICERO_2 24207
#define IDS_UTL_UNIT_CICERO_2_ABBR 24208
#define IDS_UTL_UNIT_PICAS_2 24209  // the second pica unit
#define IDS_UTL_UNIT_PICA_2 24210
#define IDS_UTL_UNIT_PICA_2_ABBR 24211
#define IDS_UTL_UNIT_QUARTER_MM 24237    // quarter millimetre, for type sizes
#define IDS_UTL_UNIT_QUARTER_MM_2 24238  // quarter millimetre, for line spacing
// Shown between the parts of a compound unit (picas and points).
#define IDS_UTL_UNIT_SEPARATOR 24069
// Follows the unit text of a display in fractions of an inch or foot.
#define IDS_UTL_UNIT_FRACTION_SUFFIX 24098
