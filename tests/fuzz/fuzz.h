// What the fuzz targets share.
#pragma once

#include <QString>

#include <cstddef>
#include <cstdint>

// What libFuzzer calls with each input; each target defines it.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

// The path of a file in memory that holds the bytes. Each call replaces the contents.
QString fileInMemory(const uint8_t *data, size_t size);

// Sends what the program prints to nowhere.
void silenceOutput();
