#pragma once

#include <QtCore/QString>
#include <QtCore/QVector>

namespace SystemReport {

/// A value over time.
struct Curve
{
    QString title;
    QString unit;
    QString style;           ///< the class of the picture in the style sheet
    double maximum = 100;    ///< the top of the picture, more than 0
    QVector<double> seconds; ///< one for each value, ascending
    QVector<double> values;  ///< negative if not known
};

/// The least of 1, 2 and 5 times a power of ten that is not less than \a value; at least 1.
double roundedUp(double value);

/// A picture in SVG, to be part of a page. It has a point for each value that is known.
QString plot(const Curve &curve);

} // namespace SystemReport
