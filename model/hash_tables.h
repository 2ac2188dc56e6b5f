// Hash tables keyed by text or by a variable's number. Qt's containers terminate on allocation
// failure; these throw bad_alloc. The seeds differ from run to run, so that nobody can craft a
// document whose keys all collide.
#pragma once

#include "xml/xml_node.h"

#include <QHashFunctions>
#include <QString>

#include <unordered_map>

struct HashOfNumber {
    std::size_t operator()(int number) const { return qHash(number, QHashSeed::globalSeed()); }
};
template <typename Value>
using NumberTable = std::unordered_map<int, Value, HashOfNumber>;

struct HashOfText {
    std::size_t operator()(QStringView text) const { return hashText(text); }
};
// Text is QString, or QStringView if the texts outlive the table.
template <typename Text, typename Value>
using TextTable = std::unordered_map<Text, Value, HashOfText>;
