#pragma once
// The floor under all number text: double-conversion, the library that has the
// digits, writing into one reserved buffer of bytes. Zero is "-0" here when it is
// negative, the rest is the text of QString::number(value, 'g', 6).

#include <double-conversion/double-conversion.h>

#include <cstddef>
#include <memory>

namespace Bench
{

class DigitFloor
{
public:
    /// @param size bytes to reserve
    explicit DigitFloor(int size)
        : m_buffer(new char[static_cast<std::size_t>(size)]),
          m_builder(m_buffer.get(), size),
          m_converter(Converter::EMIT_POSITIVE_EXPONENT_SIGN | Converter::NO_TRAILING_ZERO, "inf", "nan", 'e', -6, 21,
                      4, 0, 2)
    {
    }

    void appendGeneral(double value, char separator)
    {
        m_converter.ToPrecision(value, 6, &m_builder);
        m_builder.AddCharacter(separator);
    }

    void appendFixed(double value, int decimals, char separator)
    {
        m_converter.ToFixed(value, decimals, &m_builder);
        m_builder.AddCharacter(separator);
    }

    char const* text()
    {
        return m_builder.Finalize();
    }

private:
    using Converter = double_conversion::DoubleToStringConverter;

    std::unique_ptr<char[]> m_buffer;
    double_conversion::StringBuilder m_builder;
    Converter m_converter;
};

}
