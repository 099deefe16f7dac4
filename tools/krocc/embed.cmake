# Writes a C++ source holding a file's bytes as an array.
#   cmake -DIN=<file> -DOUT=<source> -DSYMBOL=<name> -P embed.cmake
file(READ "${IN}" hex HEX)
string(LENGTH "${hex}" digits)
math(EXPR size "${digits} / 2")
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${hex}")
# one line every 32 bytes
string(REGEX REPLACE "((0x..,){32})" "\\1\n" bytes "${bytes}")
file(WRITE "${OUT}.tmp"
  "// Generated from ${IN}: do not edit.\n#include <cstddef>\nnamespace kt {\n"
  "extern const unsigned char ${SYMBOL}[];\nextern const std::size_t ${SYMBOL}Size;\n"
  "const unsigned char ${SYMBOL}[] = {\n${bytes}};\nconst std::size_t ${SYMBOL}Size = ${size};\n}\n")
file(RENAME "${OUT}.tmp" "${OUT}")
