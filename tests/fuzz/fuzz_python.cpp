// The Python exporter, on a model document.
#include "exporters/python/python_exporter.h"
#include "tests/fuzz/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    silenceOutput();
    exportToPython(fileInMemory(data, size), nowhere(), QString());
    return 0;
}
