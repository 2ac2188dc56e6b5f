// The SAS exporter, on a model document.
#include "exporters/sas/sas_exporter.h"
#include "tests/fuzz/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    silenceOutput();
    exportToSas(fileInMemory(data, size), nowhere());
    return 0;
}
