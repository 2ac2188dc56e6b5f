#include "xml/xml_document.h"

#include <algorithm>
#if SCOREWRIGHT_SANITIZE
#include <sanitizer/asan_interface.h>
#endif

namespace {

int digitValue(char16_t c, int base) {
    if (c >= u'0' && c <= u'9') return c - u'0';
    if (base == 16 && c >= u'A' && c <= u'F') return c - u'A' + 10;
    if (base == 16 && c >= u'a' && c <= u'f') return c - u'a' + 10;
    return -1;
}

} // namespace

XmlDocument::XmlDocument(MemoryBlock owned, QStringView text, std::span<std::byte> arena)
    : block(std::move(owned)), source(text.utf16()), length(text.size()),
      pieces(arena.data() + std::min(gapSize, arena.size()),
             arena.size() - std::min(gapSize, arena.size())) {
    forbidAccess(block.get(), source);
    forbidAccess(source + length + 1, arena.data() + arena.size());
}

// The sanitizer marks groups of eight bytes, which two pieces therefore must not share.
void *XmlDocument::allocateBeforeGap(std::size_t bytes, std::size_t alignment) {
    constexpr std::size_t grain = 8;
    const std::size_t whole = (bytes + grain - 1) / grain * grain + gapSize;
    auto *const piece =
        static_cast<std::byte *>(pieces.allocate(whole, std::max(alignment, grain)));
#if SCOREWRIGHT_SANITIZE
    ASAN_UNPOISON_MEMORY_REGION(piece, bytes);
#endif
    forbidAccess(piece + bytes, piece + whole);
    return piece;
}

void forbidAccess([[maybe_unused]] const void *begin, [[maybe_unused]] const void *end) {
#if SCOREWRIGHT_SANITIZE
    const auto *const first = static_cast<const std::byte *>(begin);
    const auto size = static_cast<const std::byte *>(end) - first;
    ASAN_POISON_MEMORY_REGION(first, static_cast<std::size_t>(size));
#endif
}

bool readXmlEntity(QStringView &rest, char16_t &character) {
    if (rest.size() > 2 && rest[1] == u'#') {
        const bool isHexadecimal = rest[2] == u'x' || rest[2] == u'X';
        const int base = isHexadecimal ? 16 : 10;
        unsigned value = 0;
        for (qsizetype i = isHexadecimal ? 3 : 2; i < rest.size(); ++i) {
            if (rest[i] == u';') {
                character = static_cast<char16_t>(value); // modulo 65536
                rest = rest.sliced(i + 1);
                return true;
            }
            const int digit = digitValue(rest[i].unicode(), base);
            if (digit < 0) return false;
            value = value * static_cast<unsigned>(base) + static_cast<unsigned>(digit);
        }
        return false;
    }
    for (const XmlEntity &entity : xmlEntities) {
        const qsizetype size = entity.text.size();
        if (rest.size() >= size && equalsIgnoringCase(rest.first(size), entity.text)) {
            character = entity.character;
            rest = rest.sliced(size);
            return true;
        }
    }
    return false;
}

XmlNode XmlNode::parseText(QStringView text, QStringView tag, XmlParseResult *results) {
    if (text.isNull()) {
        if (results) *results = {XmlError::NoElementsFound};
        return {};
    }
    const auto size = static_cast<std::size_t>(text.size());
    const std::size_t textBytes = (size + 1) * sizeof(char16_t);
    const std::size_t arenaBytes = expectedArena(size);
    MemoryBlock block = allocateBlock(textBytes + arenaBytes);
    if (!block) throw std::bad_alloc();
    auto *const copy = reinterpret_cast<char16_t *>(block.get());
    *std::copy_n(text.utf16(), size, copy) = u'\0';
    const std::span arena(block.get() + textBytes, arenaBytes);
    const QStringView source(copy); // ends before the first zero unit
    return parseXml(std::make_unique<XmlDocument>(std::move(block), source, arena), tag, results);
}
