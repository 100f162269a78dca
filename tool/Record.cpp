#include "Record.h"

#include <QRegularExpression>

#include <algorithm>

namespace
{

/// Whether a message says nothing but that frames stand in for others. Exporters of shapes
/// put all failures of a file into one message.
bool isOfGaps(QString const& message)
{
    static QRegularExpression const gaps(
        QStringLiteral("(^|: )Frame [-.\\d]+: [^:;]*, frame [-.\\d]+ stands in for it( \\(in [^;]*\\))?"
                       "(; Frame [-.\\d]+: [^:;]*, frame [-.\\d]+ stands in for it( \\(in [^;]*\\))?)*$"));
    return gaps.match(message).hasMatch();
}

}

void ExportRecord::fail(Failure const& failure)
{
    status = Failed;
    reason = failure.text();
    exitStatus = failure.status();
}

bool ExportRecord::hasFailedFrames() const
{
    int const accepted = acceptedGaps();
    bool const hasFailedMessage = messagesAreFailures && messages.size() > accepted;
    return failedCount > (countsMessages ? accepted : 0) || hasFailedMessage;
}

int ExportRecord::acceptedGaps() const
{
    return acceptsGaps ? static_cast<int>(std::count_if(messages.begin(), messages.end(), isOfGaps)) : 0;
}

void ExportRecord::acceptGaps()
{
    failedCount -= countsMessages ? acceptedGaps() : 0;
}

QStringList ExportRecord::allWarnings() const
{
    QStringList all;
    for (Unheard const& choice : unheard)
    {
        all += choice.text(format);
    }
    return all + warnings;
}

nlohmann::ordered_json ExportRecord::toJson() const
{
    static char const* const statusWords[] = {"written", "skipped", "failed"};
    nlohmann::ordered_json fileList = nlohmann::ordered_json::array();
    for (File const& file : files)
    {
        fileList.push_back({{"path", jsonText(file.path)}, {"bytes", file.bytes}});
    }
    return {{"format", jsonText(format)},
            {"status", statusWords[status]},
            {"files", fileList},
            {"messages", jsonTexts(messages)},
            {"warnings", jsonTexts(allWarnings())},
            {"notices", jsonTexts(notices)},
            {"failedCount", failedCount},
            {"reason", jsonText(reason)}};
}

nlohmann::ordered_json toJson(std::vector<ExportRecord> const& records)
{
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (ExportRecord const& record : records)
    {
        list.push_back(record.toJson());
    }
    return list;
}

std::string jsonText(QString const& text)
{
    return text.toStdString();
}

nlohmann::ordered_json jsonTexts(QStringList const& texts)
{
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (QString const& text : texts)
    {
        list.push_back(jsonText(text));
    }
    return list;
}

QByteArray jsonBytes(nlohmann::ordered_json const& document)
{
    using ErrorHandler = nlohmann::ordered_json::error_handler_t;
    return QByteArray::fromStdString(document.dump(2, ' ', false, ErrorHandler::replace)) + '\n';
}
