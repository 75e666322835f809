#include "Plot.h"

#include <QtCore/QStringList>

#include <cmath>

namespace SystemReport {

namespace {

// In the units of the picture.
constexpr int Width = 480;
constexpr int Height = 240;
constexpr int Left = 56;
constexpr int Right = 14;
constexpr int Top = 14;
constexpr int Bottom = 34;
constexpr int PlotWidth = Width - Left - Right;
constexpr int PlotHeight = Height - Top - Bottom;
constexpr double Baseline = Top + PlotHeight;

QString number(double value)
{
    return QString::number(value, 'f', 1);
}

// Without zeros at the end.
QString shortNumber(double value)
{
    return QString::number(value, 'g', 4);
}

class Scale
{
public:
    explicit Scale(const Curve &curve)
        : seconds_(curve.seconds.isEmpty() ? 1 : std::ceil(curve.seconds.last() - 0.5))
        , maximum_(curve.maximum)
    {
        seconds_ = qMax(1.0, seconds_);
    }

    double seconds() const { return seconds_; }
    double x(double seconds) const { return Left + PlotWidth * qMin(1.0, seconds / seconds_); }
    double y(double value) const { return Baseline - PlotHeight * qMin(1.0, value / maximum_); }

private:
    double seconds_;
    double maximum_;
};

QString label(double x, double y, const char *anchor, const QString &text)
{
    return QStringLiteral("<text x=\"%1\" y=\"%2\" text-anchor=\"%3\">%4</text>\n")
        .arg(number(x), number(y), QString::fromLatin1(anchor), text.toHtmlEscaped());
}

QString axes(const Curve &curve, const Scale &scale)
{
    constexpr int Lines = 4;
    QString svg;
    for (int line = 0; line <= Lines; ++line) {
        const double value = curve.maximum * line / Lines;
        const double y = scale.y(value);
        svg += QStringLiteral("<line class=\"grid\" x1=\"%1\" x2=\"%2\" y1=\"%3\" y2=\"%3\"/>\n")
                   .arg(QString::number(Left), QString::number(Width - Right), number(y));
        svg += label(Left - 8, y + 4, "end", shortNumber(value));
    }
    for (const double part : {0.0, 0.5, 1.0}) {
        const char *anchor = part == 1 ? "end" : part == 0 ? "start" : "middle";
        svg += label(Left + PlotWidth * part, Height - 10, anchor,
                     shortNumber(scale.seconds() * part) + QStringLiteral(" s"));
    }
    return svg;
}

// A line and the area below it.
QString stretch(const QStringList &points, double first, double last)
{
    if (points.size() < 2)
        return QString();
    const QString line = points.join(QLatin1Char(' '));
    return QStringLiteral("<polygon class=\"area\" points=\"%1,%3 %4 %2,%3\"/>\n"
                          "<polyline class=\"line\" points=\"%4\"/>\n")
        .arg(number(first), number(last), number(Baseline), line);
}

// A value that is not known interrupts the line.
QString lines(const Curve &curve, const Scale &scale)
{
    QString svg;
    QStringList points;
    double first = 0;
    double last = 0;
    for (int index = 0; index < curve.values.size(); ++index) {
        if (curve.values.at(index) < 0) {
            svg += stretch(points, first, last);
            points.clear();
            continue;
        }
        last = scale.x(curve.seconds.at(index));
        if (points.isEmpty())
            first = last;
        points << number(last) + QLatin1Char(',') + number(scale.y(curve.values.at(index)));
    }
    return svg + stretch(points, first, last);
}

// The title of a point is shown when the mouse is over it.
QString points(const Curve &curve, const Scale &scale)
{
    constexpr int ManyPoints = 60;
    const QString radius = number(curve.values.size() > ManyPoints ? 1.2 : 2.6);
    QString svg;
    for (int index = 0; index < curve.values.size(); ++index) {
        const double value = curve.values.at(index);
        const double time = curve.seconds.at(index);
        if (value < 0)
            continue;
        svg += QStringLiteral("<circle class=\"point\" cx=\"%1\" cy=\"%2\" r=\"%3\"><title>%4 s: "
                              "%5 %6</title></circle>\n")
                   .arg(number(scale.x(time)), number(scale.y(value)), radius, shortNumber(time),
                        shortNumber(value), curve.unit.toHtmlEscaped());
    }
    return svg;
}

} // namespace

double roundedUp(double value)
{
    double power = 1;
    while (power * 10 <= value)
        power *= 10;
    for (const int factor : {1, 2, 5}) {
        if (value <= factor * power)
            return factor * power;
    }
    return 10 * power;
}

QString plot(const Curve &curve)
{
    const Scale scale(curve);
    QString content = points(curve, scale);
    content = content.isEmpty() ? label(Left + PlotWidth / 2.0, Top + PlotHeight / 2.0 - 8,
                                        "middle", QStringLiteral("The system reports no values"))
                                : lines(curve, scale) + content;
    return QStringLiteral("<figure class=\"%1\">\n<figcaption>%2 <span>%3</span></figcaption>\n"
                          "<svg viewBox=\"0 0 %4 %5\" role=\"img\" aria-label=\"%2 over time\">\n")
               .arg(curve.style, curve.title.toHtmlEscaped(), curve.unit.toHtmlEscaped(),
                    QString::number(Width), QString::number(Height))
        + axes(curve, scale) + content + QStringLiteral("</svg>\n</figure>\n");
}

} // namespace SystemReport
