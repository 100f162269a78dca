#include "Record.h"

void ExportRecord::fail(Failure const& failure)
{
    status = Failed;
    reason = failure.text();
    exitStatus = failure.status();
}

bool ExportRecord::hasFailedFrames() const
{
    return failedCount > 0 || (messagesAreFailures && !messages.isEmpty());
}

nlohmann::ordered_json ExportRecord::toJson() const
{
    static char const* const statusWords[] = {"written", "skipped", "failed"};
    nlohmann::ordered_json fileList = nlohmann::ordered_json::array();
    for (File const& file : files)
    {
        fileList.push_back({{"path", jsonText(file.path)}, {"bytes", file.bytes}});
    }
    return {{"format", jsonText(format)},      {"status", statusWords[status]},   {"files", fileList},
            {"messages", jsonTexts(messages)}, {"warnings", jsonTexts(warnings)}, {"notices", jsonTexts(notices)},
            {"failedCount", failedCount},      {"reason", jsonText(reason)}};
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
