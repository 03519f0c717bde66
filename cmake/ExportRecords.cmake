# The generated header names VANTRY_EXPORT without defining it; this makes it compile alone.
file(READ ${HEADER} text)
if(NOT text MATCHES "define VANTRY_EXPORT")
  string(REPLACE "#include <string>" "#include <string>\n\n#ifndef VANTRY_EXPORT\n#define VANTRY_EXPORT __attribute__((visibility(\"default\")))\n#endif" text "${text}")
  file(WRITE ${HEADER} "${text}")
endif()
