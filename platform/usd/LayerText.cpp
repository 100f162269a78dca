// Layers as the text of a .usda file, in the layout of OpenUSD 22.11:
//
//   #usda 1.0
//   (
//       defaultPrim = "Scene"
//       metersPerUnit = 0.01
//   )
//
//   def Xform "Scene"
//   {
//       double3 xformOp:translate.timeSamples = {
//           1: (0, 1.5, 8),
//           2: (0, 1.625, 8),
//       }
//       uniform token[] xformOpOrder = ["xformOp:translate"]
//
//       def Mesh "wall"
//       {
//       }
//   }
//
// Numbers are the shortest that read back as they were.

#include "LayerData.h"

#include <pxr/usd/sdf/layer.h>

#include <double-conversion/double-conversion.h>

#include <algorithm>
#include <charconv>
#include <strings.h>

PXR_NAMESPACE_OPEN_SCOPE

namespace
{

using double_conversion::DoubleToStringConverter;

constexpr int INDENT = 4;

/// Longer than any number: 17 digits, sign, point, exponent, or 15 digits before the point.
constexpr int LONGEST_NUMBER = 32;

class TextWriter
{
public:
    explicit TextWriter(std::string& out) : m_out(out)
    {
    }

    void write(Sdf_LayerData const& layer)
    {
        m_out += "#usda 1.0\n";
        writeMetadata(layer);
        m_out += '\n';
        for (Sdf_PrimData const* const prim : layer.root.children)
        {
            writePrim(*prim, 0);
            m_out += '\n';
        }
    }

private:
    void writeMetadata(Sdf_LayerData const& layer)
    {
        std::map<std::string, std::string> entries;
        for (auto const& [name, number] : layer.numbers)
        {
            append(number, entries[name]);
        }
        for (auto const& [name, text] : layer.texts)
        {
            quote(text, entries[name]);
        }
        if (entries.empty())
        {
            return;
        }
        m_out += "(\n";
        for (auto const& [name, value] : entries)
        {
            m_out += "    " + name + " = " + value + '\n';
        }
        m_out += ")\n";
    }

    void writePrim(Sdf_PrimData const& prim, int depth)
    {
        constexpr char const* SPECIFIERS[] = {"def", "over", "class"};
        indent(depth);
        m_out += SPECIFIERS[prim.specifier];
        if (!prim.typeName.IsEmpty())
        {
            m_out += ' ' + prim.typeName.GetString();
        }
        m_out += " \"" + prim.path.GetName() + "\"\n";
        indent(depth);
        m_out += "{\n";
        for (Sdf_AttributeData const* const attribute : inOrderOfText(prim.attributes))
        {
            writeAttribute(*attribute, depth + 1);
        }
        bool isFirst = prim.attributes.empty();
        for (Sdf_PrimData const* const child : prim.children)
        {
            m_out += isFirst ? "" : "\n";
            isFirst = false;
            writePrim(*child, depth + 1);
        }
        indent(depth);
        m_out += "}\n";
    }

    // As in a dictionary, capitals beside small letters.
    static std::vector<Sdf_AttributeData const*> inOrderOfText(std::vector<Sdf_AttributeData> const& attributes)
    {
        std::vector<Sdf_AttributeData const*> sorted;
        sorted.reserve(attributes.size());
        for (Sdf_AttributeData const& attribute : attributes)
        {
            sorted.push_back(&attribute);
        }
        std::sort(sorted.begin(), sorted.end(),
                  [](Sdf_AttributeData const* a, Sdf_AttributeData const* b)
                  { return strcasecmp(a->name.GetText(), b->name.GetText()) < 0; });
        return sorted;
    }

    void writeAttribute(Sdf_AttributeData const& attribute, int depth)
    {
        bool const hasMetadata = !attribute.interpolation.IsEmpty();
        if (!attribute.value.IsEmpty() || hasMetadata || attribute.samples.empty())
        {
            writeDeclaration(attribute, depth);
            if (!attribute.value.IsEmpty())
            {
                m_out += " = ";
                append(attribute.value);
            }
            if (hasMetadata)
            {
                m_out += " (\n";
                indent(depth + 1);
                m_out += "interpolation = ";
                quote(attribute.interpolation.GetString(), m_out);
                m_out += '\n';
                indent(depth);
                m_out += ')';
            }
            m_out += '\n';
        }
        if (attribute.samples.empty())
        {
            return;
        }
        writeDeclaration(attribute, depth);
        m_out += ".timeSamples = {\n";
        for (auto const& [time, sample] : attribute.samples)
        {
            indent(depth + 1);
            append(time, m_out);
            m_out += ": ";
            append(sample);
            m_out += ",\n";
        }
        indent(depth);
        m_out += "}\n";
    }

    void writeDeclaration(Sdf_AttributeData const& attribute, int depth)
    {
        indent(depth);
        m_out += attribute.custom ? "custom " : "";
        m_out += attribute.variability == SdfVariabilityUniform ? "uniform " : "";
        m_out += attribute.type._Text();
        m_out += ' ';
        m_out += attribute.name.GetString();
    }

    void indent(int depth)
    {
        m_out.append(static_cast<std::size_t>(INDENT * depth), ' ');
    }

    void append(VtValue const& value)
    {
        std::visit([this](auto const& held) { append(held, m_out); }, value._Storage());
    }

    static void append(std::monostate, std::string&)
    {
    }

    static void append(int number, std::string& out)
    {
        char digits[LONGEST_NUMBER];
        out.append(digits, std::to_chars(digits, digits + LONGEST_NUMBER, number).ptr);
    }

    static DoubleToStringConverter const& converter()
    {
        static DoubleToStringConverter const toText(DoubleToStringConverter::NO_FLAGS, "inf", "nan", 'e', -6, 15, 0, 0);
        return toText;
    }

    static void append(float number, std::string& out)
    {
        char digits[LONGEST_NUMBER];
        double_conversion::StringBuilder text(digits, LONGEST_NUMBER);
        converter().ToShortestSingle(number, &text);
        out.append(digits, static_cast<std::size_t>(text.position()));
    }

    static void append(double number, std::string& out)
    {
        char digits[LONGEST_NUMBER];
        double_conversion::StringBuilder text(digits, LONGEST_NUMBER);
        converter().ToShortest(number, &text);
        out.append(digits, static_cast<std::size_t>(text.position()));
    }

    static void append(TfToken const& token, std::string& out)
    {
        quote(token.GetString(), out);
    }

    template <typename Vector, std::size_t = Vector::dimension>
    static void append(Vector const& vector, std::string& out)
    {
        for (std::size_t i = 0; i < Vector::dimension; ++i)
        {
            out += i == 0 ? "(" : ", ";
            append(vector[i], out);
        }
        out += ')';
    }

    template <typename T>
    static void append(VtArray<T> const& array, std::string& out)
    {
        out += '[';
        bool isFirst = true;
        for (T const& element : array)
        {
            out += isFirst ? "" : ", ";
            isFirst = false;
            append(element, out);
        }
        out += ']';
    }

    // In single quotes when that saves escapes, in three of them where the text has lines.
    static void quote(std::string const& text, std::string& out)
    {
        bool const isLong = text.find('\n') != std::string::npos;
        bool const hasOnlyDouble = text.find('"') != std::string::npos && text.find('\'') == std::string::npos;
        char const mark = hasOnlyDouble ? '\'' : '"';
        std::string const marks(isLong ? 3 : 1, mark);
        out += marks;
        for (char const c : text)
        {
            appendEscaped(c, mark, out);
        }
        out += marks;
    }

    static void appendEscaped(char c, char mark, std::string& out)
    {
        constexpr char HEX[] = "0123456789abcdef";
        constexpr char DELETE = 0x7f;
        constexpr int DIGIT_BITS = 4;
        auto const byte = static_cast<unsigned char>(c);
        if (c == mark || c == '\\')
        {
            out += '\\';
            out += c;
        }
        else if (c == '\t')
        {
            out += "\\t";
        }
        else if (c == '\r')
        {
            out += "\\r";
        }
        else if (c != '\n' && (byte < ' ' || c == DELETE))
        {
            out += "\\x";
            out += HEX[byte >> DIGIT_BITS];
            out += HEX[byte & 15U];
        }
        else
        {
            out += c;
        }
    }

    std::string& m_out;
};

}

bool SdfLayer::ExportToString(std::string* result) const
{
    result->clear();
    TextWriter(*result).write(*m_data);
    return true;
}

PXR_NAMESPACE_CLOSE_SCOPE
