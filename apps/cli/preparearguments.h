#pragma once

#include "prepare/prepareoptions.h"

#include <QCommandLineOption>
#include <QList>

class QCommandLineParser;

/// The options that say how files are prepared.
QList<QCommandLineOption> preparationOptions();

/// What these options say; the encoding of the result is left out, because commands differ in what
/// they call it.
prep::PrepareOptions readPreparationOptions(const QCommandLineParser& parser);

/// The name of a codec that an option gives; empty where it is not set, or "auto".
QByteArray readCodec(const QCommandLineParser& parser, const char* name);
