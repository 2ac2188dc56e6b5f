// Hash tables by texts and by the numbers of variables. Qt's containers terminate on allocation
// failure; these throw bad_alloc. Their seeds differ from run to run, so that nobody can craft a
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
// Text is QString, or QStringView for a table that ends before the texts do.
template <typename Text, typename Value>
using TextTable = std::unordered_map<Text, Value, HashOfText>;
