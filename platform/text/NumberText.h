#pragma once
// The text of numbers: one room, so that every exporter prints alike.
//
// Each function gives exactly the text of the Qt call that it names, whatever the
// locale, by appending to a buffer. printf and std::to_chars are not the same: Qt
// rounds an exact tie away from zero (1920.125 with six digits is 1920.13) and
// prints -0 as 0.

#include <QByteArray>
#include <QString>

namespace Text
{

/// `QString::number(value, 'g', 6)`: at most six significant digits, exponent
/// form for exponents below -4 and from 6 up ("1.23457e+06"), "nan", "inf".
void appendGeneral(QString& out, double value);
void appendGeneral(QByteArray& out, double value);

/// `QString::number(value, 'f', decimals)`, decimals from 0 to 15 (more or fewer are
/// taken as these). Zero has no sign, but what rounds to zero keeps it: "-0.00".
void appendFixed(QString& out, double value, int decimals);
void appendFixed(QByteArray& out, double value, int decimals);

/// The same texts by themselves, for the odd number outside of a long run of them.
QString generalText(double value);
QString fixedText(double value, int decimals);

/// `QString::number(value)` of an integer.
void appendInteger(QString& out, long long value);
void appendInteger(QByteArray& out, long long value);

/// The shortest decimal that reads back as the same finite double, as JSON takes
/// it ("0.1", "1e+21", "-0.0" for negative zero). JSON has no text for NaN and the
/// infinities: they become "null", and a caller that can't have that asks first.
void appendShortest(QByteArray& out, double value);

/// Whether a target program can read the value as a number: false for NaN,
/// infinities and subnormals, true for zero.
bool isWritable(double value);

}
