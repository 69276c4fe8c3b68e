# The build step of quorin_embed_text: writes the bytes of INPUT as one array of a C++ source.
file(READ ${INPUT} bytes HEX)
string(REGEX REPLACE "(................................................................)" "\\1\n"
       bytes "${bytes}")
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${bytes}")
file(WRITE ${OUTPUT}
"#include <string_view>
namespace ${NAMESPACE} {
namespace {
const unsigned char bytes[] = {
${bytes}0x00};
}  // namespace
extern const std::string_view ${SYMBOL};
const std::string_view ${SYMBOL}(reinterpret_cast<const char*>(bytes), sizeof bytes - 1);
}  // namespace ${NAMESPACE}
")
