// The VBA exporter, on a model document.
#include "exporters/vba/vba_exporter.h"
#include "tests/fuzz/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    silenceOutput();
    exportToVba(fileInMemory(data, size), nowhere());
    return 0;
}
