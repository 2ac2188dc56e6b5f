// The Base64 decoder: the first byte chooses between narrow and wide characters.
#include "tests/fuzz/fuzz.h"
#include "xml/base64.h"

#include <cstring>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static Base64Decoder decoder;
    if (size == 0) return 0;
    std::vector<char16_t> units(data, data + size);
    if (data[0] == 0) std::memcpy(units.data(), data, size);
    qsizetype decoded = 0;
    XmlError error = XmlError::NoError;
    const QStringView text(units.data(), std::ssize(units));
    const unsigned char *const bytes = base64Decode(decoder, text, &decoded, &error);
    qsizetype sum = 0;
    for (qsizetype i = 0; bytes && i < decoded; ++i) sum += bytes[i];
    if (sum < 0) std::abort();
    return 0;
}
