// Interactive HTML page.
#pragma once

#include <QString>

// Writes a page that asks for the value of each input column and computes the score as values are
// entered, as UTF-8 without byte-order mark. The model path names a model document or a list of
// them (root "Models", with the file names in its "Model" elements); a document that cannot be read
// adds nothing to the page. The canvas file is the layout; a built-in canvas replaces it if it does
// not exist or is nearly empty. An empty output path stands for the model path with ".html" in
// place of ".ModelXml".
//
// A column that k variables share needs k (k + 1) / 2 score lines in the page's script, so a few
// hundred models may need millions. A script has at most 1 << 23 of them, with at most 1 << 29
// characters of names.
//
// Returns 0 without a message, even if the output cannot be opened; 2 for a list without models or
// a canvas that asks only some of the questions; 3 for a canvas that lacks a tag or a variable
// without coefficient; 8 for an array that is too short and for too many lines. Modifies the output
// only if it returns 0.
int exportToHtml(const QString &modelPath, const QString &canvasPath, const QString &outputPath);
