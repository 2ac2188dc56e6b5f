// The HTML exporter, on a canvas.
#include "exporters/html/html_exporter.h"
#include "tests/fuzz/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    silenceOutput();
    exportToHtml(modelOfCorpus("logistic"), fileInMemory(data, size), nowhere());
    return 0;
}
