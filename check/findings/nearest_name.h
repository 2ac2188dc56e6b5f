// Suggests a name for a misspelt one.
#pragma once

#include <QStringView>

#include <span>

// The most similar name, ignoring case; empty if none is similar.
QStringView nearestName(QStringView written, std::span<const QStringView> names);
