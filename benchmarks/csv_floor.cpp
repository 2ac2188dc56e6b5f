// Reads a CSV file with libcsv and ignores the cells: the least that any reader with libcsv costs.
#include <csv.h>

#include <cstdio>

int main(int argc, char **argv) {
    std::FILE *const file = argc > 1 ? std::fopen(argv[1], "rb") : nullptr;
    csv_parser parser;
    if (!file || csv_init(&parser, 0) != 0) return 1;
    const auto cell = [](void *, std::size_t, void *) {};
    const auto row = [](int, void *) {};
    static char block[1 << 16];
    for (std::size_t size = 0; (size = std::fread(block, 1, sizeof block, file)) > 0;) {
        csv_parse(&parser, block, size, cell, row, nullptr);
    }
    csv_fini(&parser, cell, row, nullptr);
    csv_free(&parser);
    return std::fclose(file);
}
