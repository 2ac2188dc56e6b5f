// File loading from raw bytes: the detection of the encoding and its decoding.
#include "tests/fuzz/fuzz.h"
#include "xml/xml_node.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    XmlParseResult result;
    const XmlNode node = XmlNode::parseFile(fileInMemory(data, size), {}, &result);
    if (node.isEmpty() && result.error == XmlError::NoError) std::abort();
    return 0;
}
