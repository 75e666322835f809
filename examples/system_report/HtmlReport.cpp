#include "HtmlReport.h"

#include "PageStyle.h"
#include "Plot.h"
#include "Text.h"

namespace SystemReport {

namespace {

QString escaped(const QString &text)
{
    return oneLine(text).toHtmlEscaped();
}

QString cells(const QStringList &texts)
{
    QString html;
    for (int column = 0; column < texts.size(); ++column) {
        html += (column == 0 ? QStringLiteral("<th scope=\"row\">%1</th>")
                             : QStringLiteral("<td>%1</td>"))
                    .arg(escaped(texts.at(column)));
    }
    return html;
}

QString head(const QStringList &columns)
{
    if (columns.isEmpty())
        return QString();
    QString html = QStringLiteral("<thead><tr>");
    for (const QString &column : columns)
        html += QStringLiteral("<th scope=\"col\">%1</th>").arg(escaped(column));
    return html + QStringLiteral("</tr></thead>\n");
}

QString table(const Section &section)
{
    if (section.rows.isEmpty())
        return QString();
    QString html
        = QStringLiteral("<div class=\"scroll\"><table class=\"%1\">\n")
              .arg(section.columns.isEmpty() ? QStringLiteral("pairs") : QStringLiteral("columns"))
        + head(section.columns) + QStringLiteral("<tbody>\n");
    for (const QStringList &row : section.rows)
        html += QStringLiteral("<tr>") + cells(row) + QStringLiteral("</tr>\n");
    return html + QStringLiteral("</tbody>\n</table></div>\n");
}

QString card(const Section &section)
{
    const bool isWide = !section.columns.isEmpty() || section.rows.isEmpty();
    const QString remark = section.remark.isEmpty()
        ? QString()
        : QStringLiteral("<p class=\"quiet\">%1</p>\n").arg(escaped(section.remark));
    return QStringLiteral("<section class=\"card%1\">\n<h2>%2</h2>\n")
               .arg(isWide ? QStringLiteral(" wide") : QString(), escaped(section.title))
        + remark + table(section) + QStringLiteral("</section>\n");
}

QString highlights(const QVector<Highlight> &values)
{
    QString html = QStringLiteral("<dl>\n");
    for (const Highlight &value : values) {
        html += QStringLiteral("<div class=\"card\"><dt>%1</dt><dd>%2</dd></div>\n")
                    .arg(escaped(value.name), escaped(value.value));
    }
    return html + QStringLiteral("</dl>\n");
}

QString plots(const QVector<Sample> &samples)
{
    constexpr double MebibytesInGibibyte = 1024;
    Curve load;
    load.title = QStringLiteral("Processor load");
    load.unit = QStringLiteral("%");
    load.style = QStringLiteral("load card");
    Curve memory;
    memory.title = QStringLiteral("Memory available");
    memory.unit = QStringLiteral("GiB");
    memory.style = QStringLiteral("memory card");
    double most = 0;
    for (const Sample &sample : samples) {
        const double seconds = static_cast<double>(sample.milliseconds) / 1000;
        const double available = sample.available < 0
            ? -1
            : static_cast<double>(sample.available) / MebibytesInGibibyte;
        load.seconds << seconds;
        load.values << static_cast<double>(sample.load);
        memory.seconds << seconds;
        memory.values << available;
        most = qMax(most, available);
    }
    memory.maximum = roundedUp(most);
    return QStringLiteral("<div class=\"grid-of-cards\">\n") + plot(load) + plot(memory)
        + QStringLiteral("</div>\n");
}

QString notice()
{
    return QStringLiteral(
        "<section class=\"card notice\">\n"
        "<p><strong>This page contains</strong> the names of the machine, its user and its "
        "folders, versions, processors, counters, the nodes of the cluster, the product's "
        "settings, flags and running programs.</p>\n"
        "<p><strong>It does not contain</strong> values of environment variables except the paths "
        "of these folders, contents of files other than the product's flags, and processes of "
        "other products. It is one file: it loads nothing and runs no script.</p>\n"
        "</section>\n");
}

} // namespace

QByteArray htmlReport(const Report &report)
{
    const QString title
        = QStringLiteral("System report of %1").arg(oneLine(report.machine)).toHtmlEscaped();
    QString html = QStringLiteral(
                       "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
                       "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
                       "style-src 'unsafe-inline'\">\n"
                       "<meta name=\"viewport\" content=\"width=device-width, "
                       "initial-scale=1\">\n")
        + QStringLiteral("<title>") + title + QStringLiteral("</title>\n<style>")
        + QString::fromLatin1(PageStyle) + QStringLiteral("</style>\n</head>\n<body>\n<main>\n");
    html += QStringLiteral("<h1>") + title + QStringLiteral("</h1>\n<p class=\"quiet\">")
        + escaped(report.time) + QStringLiteral("</p>\n") + notice() + highlights(report.highlights)
        + plots(report.samples) + QStringLiteral("<div class=\"grid-of-cards sections\">\n");
    for (const Section &section : report.sections)
        html += card(section);
    return (html + QStringLiteral("</div>\n</main>\n</body>\n</html>\n")).toUtf8();
}

} // namespace SystemReport
