// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

#include <string>
#include <vector>

/// An argument list written as one text, the words separated by blanks; a word "''" stands for an empty one.
inline std::vector<std::string> wordsOf(const QString &text)
{
    std::vector<std::string> words;
    const QStringList parts = text.split(' ', Qt::SkipEmptyParts);
    for (const QString &word : parts)
        words.push_back(word == "''" ? std::string{} : word.toStdString());
    return words;
}

/// The inverse of wordsOf().
inline QString textOf(const std::vector<std::string> &words)
{
    QStringList texts;
    for (const std::string &word : words)
        texts += word.empty() ? QString("''") : QString::fromStdString(word);
    return texts.join(' ');
}
