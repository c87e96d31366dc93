#pragma once

#include "importrun.h"

/// A second DXF importer, written for plainness alone: pairs are strings, entities are read into
/// sets and hashes, all points stand in sorted vectors that are searched from end to end. What it
/// makes of a drawing is what the product has to make of it.
ImportOutcome importLiterally(
    const ImportOptions& options, const QString& objectFile, const QString& pointFile = QString());

/// `text` with its control sequences replaced, found by a regular expression.
QString decodeLiterally(const QString& text, const QTextCodec* codec);

/// Whether a text looks like a point number, told by a regular expression.
bool isPointNumberLiterally(const QString& def);
