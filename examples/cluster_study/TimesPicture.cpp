#include "TimesPicture.h"

#include <algorithm>

namespace ClusterStudy {

namespace {

// In the units of the picture.
constexpr int Width = 900;
constexpr int Height = 360;
constexpr int Left = 70;
constexpr int Right = 20;
constexpr int Top = 50;
constexpr int Bottom = 50;
constexpr int PlotWidth = Width - Left - Right;
constexpr int PlotHeight = Height - Top - Bottom;
constexpr int MaxBars = PlotWidth / 2;

struct Bar
{
    CaseEnd::State state = CaseEnd::Missing;
    qint64 milliseconds = 0;
};

// In the order from good to bad.
int badness(CaseEnd::State state)
{
    switch (state) {
    case CaseEnd::Ok:
        return 1;
    case CaseEnd::Cancelled:
        return 2;
    case CaseEnd::Failed:
        return 3;
    case CaseEnd::Missing:
        break;
    }
    return 0;
}

QString colour(CaseEnd::State state)
{
    switch (state) {
    case CaseEnd::Ok:
        return QStringLiteral("#2f6fab");
    case CaseEnd::Cancelled:
        return QStringLiteral("#999999");
    case CaseEnd::Failed:
    case CaseEnd::Missing:
        break;
    }
    return QStringLiteral("#c0392b");
}

QVector<Bar> barsOf(const QVector<CaseEnd> &ends)
{
    QVector<Bar> bars(qMin(ends.size(), MaxBars));
    for (int index = 0; index < ends.size(); ++index) {
        const CaseEnd &end = ends.at(index);
        const qint64 position = static_cast<qint64>(index) * bars.size() / ends.size();
        Bar &bar = bars[static_cast<int>(position)];
        bar.milliseconds = qMax(bar.milliseconds, end.milliseconds);
        if (badness(end.state) > badness(bar.state))
            bar.state = end.state;
    }
    return bars;
}

QString number(double value)
{
    return QString::number(value, 'f', 2);
}

QString label(double x, double y, const QString &anchor, const QString &text)
{
    return QStringLiteral("<text x=\"%1\" y=\"%2\" text-anchor=\"%3\">%4</text>\n")
        .arg(number(x), number(y), anchor, text);
}

QString rectangle(double x, double y, double width, double height, const QString &colour)
{
    return QStringLiteral("<rect x=\"%1\" y=\"%2\" width=\"%3\" height=\"%4\" fill=\"%5\"/>\n")
        .arg(number(x), number(y), number(width), number(height), colour);
}

QString seconds(double milliseconds)
{
    const double value = milliseconds / 1000;
    // The form with significant digits is "1e+03" from here on.
    constexpr double FirstWithExponent = 999.5;
    return (value < FirstWithExponent ? QString::number(value, 'g', 3)
                                      : QString::number(value, 'f', 0))
        + QStringLiteral(" s");
}

QString axes(qint64 longest, int cases)
{
    QString svg;
    constexpr int Lines = 4;
    for (int line = 0; line <= Lines; ++line) {
        const double y = Top + PlotHeight - static_cast<double>(PlotHeight) * line / Lines;
        svg += QStringLiteral(
                   "<line x1=\"%1\" y1=\"%3\" x2=\"%2\" y2=\"%3\" stroke=\"#cccccc\"/>\n")
                   .arg(QString::number(Left), QString::number(Width - Right), number(y));
        svg += label(Left - 8, y + 4, QStringLiteral("end"),
                     seconds(static_cast<double>(longest) * line / Lines));
    }
    svg += label(Left, Height - Bottom + 20, QStringLiteral("start"), QStringLiteral("1"));
    svg += label(Width - Right, Height - Bottom + 20, QStringLiteral("end"),
                 QString::number(cases));
    return svg
        + label(Left + PlotWidth / 2.0, Height - 12, QStringLiteral("middle"),
                QStringLiteral("case"));
}

QString legend()
{
    QString svg;
    double x = Left + 250;
    for (const auto state : {CaseEnd::Ok, CaseEnd::Failed, CaseEnd::Cancelled}) {
        svg += rectangle(x, 19, 12, 12, colour(state));
        svg += label(x + 18, 30, QStringLiteral("start"), stateName(state));
        x += 110;
    }
    return svg;
}

} // namespace

QByteArray timesPicture(const QVector<CaseEnd> &ends)
{
    const QVector<Bar> bars = barsOf(ends);
    qint64 longest = 1;
    for (const Bar &bar : bars)
        longest = qMax(longest, bar.milliseconds);

    QString svg = QStringLiteral("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%1\" "
                                 "height=\"%2\" viewBox=\"0 0 %1 %2\" font-family=\"sans-serif\" "
                                 "font-size=\"12\">\n")
                      .arg(QString::number(Width), QString::number(Height));
    svg += rectangle(0, 0, Width, Height, QStringLiteral("#ffffff"));
    svg += label(Left, 30, QStringLiteral("start"), QStringLiteral("Time of each case"));
    svg += legend() + axes(longest, ends.size());
    const double step = static_cast<double>(PlotWidth) / qMax(1, bars.size());
    for (int index = 0; index < bars.size(); ++index) {
        const Bar &bar = bars.at(index);
        if (bar.state == CaseEnd::Missing)
            continue;
        const double full = static_cast<double>(PlotHeight) * static_cast<double>(bar.milliseconds)
            / static_cast<double>(longest);
        const double height = qMax(1.0, full);
        svg += rectangle(Left + index * step, Top + PlotHeight - height, std::min(step * 0.8, 40.0),
                         height, colour(bar.state));
    }
    return (svg + QStringLiteral("</svg>\n")).toUtf8();
}

} // namespace ClusterStudy
