#pragma once
// The types of option values: from the words of the command line to values, with one
// wording for what is wrong with them. All errors are CLI::ValidationError.

#include "FrameRange.h"

#include <CLI/CLI.hpp>
#include <QString>
#include <QStringList>

#include <functional>
#include <string>
#include <utility>
#include <vector>

QString fromArgument(std::string const& argument);

/// An option with a text that goes through `take`.
CLI::Option* addText(CLI::App* app, std::string const& name, std::string const& help,
                     std::function<void(QString const&)> const& take);

/// An option that may stand several times, with one text each.
CLI::Option* addTexts(CLI::App* app, std::string const& name, std::string const& help, QStringList& target);

template <typename Value>
using Words = std::vector<std::pair<std::string, Value>>;

/// An option that takes one of some words.
template <typename Value, typename Target>
CLI::Option* addChoice(CLI::App* app, std::string const& name, std::string const& help, Words<Value> const& words,
                       Target& target)
{
    std::string list;
    for (auto const& word : words)
    {
        list += (list.empty() ? "" : "|") + word.first;
    }
    auto const take = [=, &target](QString const& text)
    {
        for (auto const& word : words)
        {
            if (fromArgument(word.first) == text)
            {
                target = word.second;
                return;
            }
        }
        throw CLI::ValidationError(name, "\"" + text.toStdString() + "\" isn't one of " + list);
    };
    return addText(app, name, help, take)->type_name(list);
}

int wholeNumber(std::string const& option, QString const& text);

/// A frame as shown: a whole number, or a half for the second field of one.
double shownFrame(std::string const& option, QString const& text);

/// A-B, both as shown.
FrameRange frameRange(QString const& text);

/// The text itself.
QString notEmpty(std::string const& option, QString const& text);
