// Finds the name that a misspelled one is meant for.
#pragma once

#include <QStringView>

#include <span>

// The most similar name, whatever the case; empty if none is similar.
QStringView nearestName(QStringView written, std::span<const QStringView> names);
