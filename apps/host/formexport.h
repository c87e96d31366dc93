#pragma once

#include "formtable.h"

#include <atomic>

/// What a form is written as.
enum class FormFile { Xml, Csv, GeoJson, Mif, Svg, Png, Pdf };

/// What is written, and where.
struct FormExport {
    FormTable table;
    bool northingFirst = false; ///< the first coordinate of the objects runs to the north
    QVector<int> objects; ///< the rows of a sheet
    QString title;
    QString fileName;
    FormFile form = FormFile::Xml;
};

/// Writes the form; a file appears whole or not at all, and not once `cancelled`. Returns why it
/// was not written, or, in `remark`, what to know of it.
QString writeFormFile(
    const FormExport& task, const std::atomic_bool& cancelled, QString* remark = nullptr);
