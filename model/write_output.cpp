#include "model/write_output.h"

#include "platform/platform.h"

using namespace Qt::Literals::StringLiterals;

int openOutput(const QString &fileName, OutputEncoding encoding, TextBuffer &out) {
    out.reserveBlock(); // out of memory must not empty the file
    OutputFile file;
    file.stream.reset(openFile(fileName, FileUse::Write));
    file.encoding = encoding;
    if (!file.stream) {
        printText(u"Cannot open file '%1' for writing.\n"_s.arg(fileName));
        return exitCannotOpenOutput;
    }
    const QByteArrayView mark = encoding == OutputEncoding::Utf16 ? "\xFF\xFE" : "\xEF\xBB\xBF";
    const auto size = static_cast<std::size_t>(mark.size());
    std::FILE *const stream = file.stream.get();
    // Without a flush, a full device would be detected only when the file is closed.
    if (std::fwrite(mark.data(), 1, size, stream) != size || std::fflush(stream) != 0) {
        printText(u"Cannot write to file '%1'.\n"_s.arg(fileName));
        return exitCannotWriteOutput;
    }
    out.writeTo(std::move(file));
    return exitSuccess;
}

void reportSuccess() {
    printText(u"Conversion successful!\n");
}

void writePage(const QString &fileName, QStringView text) {
    OutputFile file;
    file.stream.reset(openFile(fileName, FileUse::Write));
    file.encoding = OutputEncoding::Utf8;
    if (file.stream) writeText(file, text);
}
