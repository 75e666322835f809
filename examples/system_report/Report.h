#pragma once

#include "Samples.h"

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

namespace SystemReport {

/// A table of the report. The first column names the row.
struct Section
{
    QString title;
    QString remark;      ///< a sentence about the table, or why there is none; can be empty
    QStringList columns; ///< the headings; empty for a table of names and values
    QVector<QStringList> rows;
};

/// A value that a reader looks for first.
struct Highlight
{
    QString name;
    QString value;
};

/// What the report says, without a form. The texts are as the library returned them: the functions
/// that write a form escape them.
struct Report
{
    QString machine;
    QString time;
    QVector<Highlight> highlights;
    QVector<Sample> samples;
    QVector<Section> sections;
};

} // namespace SystemReport
