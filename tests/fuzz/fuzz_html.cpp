// The HTML exporter, on a model document or a list of models.
#include "exporters/html/html_exporter.h"
#include "tests/fuzz/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    silenceOutput();
    exportToHtml(fileInMemory(data, size), QString(), nowhere());
    return 0;
}
