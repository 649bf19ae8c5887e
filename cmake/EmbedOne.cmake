file(READ ${IN} hex HEX)
string(LENGTH "${hex}" hexlen)
math(EXPR size "${hexlen} / 2")
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${hex}")
string(REGEX REPLACE "(0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,)" "\\1\n" bytes "${bytes}")
file(WRITE ${OUT} "// Generated from ${NAME}: do not edit.\n"
  "#include <kestrel/frame/platform/Resources.h>\n"
  "namespace {\n"
  "alignas(8) const unsigned char kData[${size} + 1] = {\n${bytes}0};\n"
  "const kestrel::ResourceRegistration kReg(\"${NAME}\", \"${TYPE}\", kData, ${size});\n"
  "} // namespace\n"
  "extern \"C\" const char kestrel_embedded_${TYPE}_${NAME} = 0;\n")
