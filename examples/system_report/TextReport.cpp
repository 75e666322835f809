#include "TextReport.h"

#include "Text.h"

namespace SystemReport {

namespace {

constexpr int MaxColumn = 60; // a longer cell moves the rest of its row to the right

const QLatin1Char LineEnd('\n');

QString heading(const QString &text, QLatin1Char line)
{
    return text + LineEnd + QString(text.size(), line) + LineEnd;
}

QStringList safe(const QStringList &cells)
{
    QStringList line;
    for (const QString &cell : cells)
        line << oneLine(cell);
    return line;
}

QVector<QStringList> linesOf(const Section &section)
{
    QVector<QStringList> lines;
    if (!section.columns.isEmpty())
        lines << safe(section.columns);
    for (const QStringList &row : section.rows)
        lines << safe(row);
    return lines;
}

int widthOf(const QVector<QStringList> &lines, int column)
{
    int width = 0;
    for (const QStringList &line : lines) {
        const int size = static_cast<int>(line.value(column).size());
        if (size <= MaxColumn)
            width = qMax(width, size);
    }
    return width;
}

QString table(const Section &section)
{
    const QVector<QStringList> lines = linesOf(section);
    QVector<int> widths;
    for (int column = 0; !lines.isEmpty() && column < lines.first().size(); ++column)
        widths << widthOf(lines, column);
    QString text;
    for (const QStringList &line : lines) {
        QString row;
        for (int column = 0; column < line.size(); ++column)
            row += line.at(column).leftJustified(widths.value(column)) + QStringLiteral("  ");
        while (row.endsWith(QLatin1Char(' ')))
            row.chop(1);
        text += row + LineEnd;
    }
    return text;
}

} // namespace

QString textReport(const Report &report)
{
    QString text = heading(QStringLiteral("System report of %1, %2")
                               .arg(oneLine(report.machine), oneLine(report.time)),
                           QLatin1Char('='));
    for (const Section &section : report.sections) {
        text += LineEnd + heading(oneLine(section.title), QLatin1Char('-'));
        if (!section.remark.isEmpty())
            text += oneLine(section.remark) + LineEnd;
        text += table(section);
    }
    return text;
}

} // namespace SystemReport
