#pragma once

#include <QJsonObject>

struct Report;

/// A report for programs.
QJsonObject reportJson(const Report& report);
