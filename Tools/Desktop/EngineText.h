#pragma once

#include <QString>

#include <string>

/// Names out of old files may be in the code page of their time.
inline QString From_Engine(const std::string &text)
{
    const QString read = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    return read.contains(QChar::ReplacementCharacter)
               ? QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size()))
               : read;
}
