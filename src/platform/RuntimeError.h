#pragma once
#include <QString>
#include <stdexcept>

namespace mirel {

/// An error raised to the caller with a number, a source and a description,
/// the three things the system's error reports carry.
class RuntimeError : public std::runtime_error {
public:
    RuntimeError(int number, QString source, QString description)
        : std::runtime_error((source + QStringLiteral(": ") + description).toStdString()),
          m_number(number), m_source(std::move(source)), m_description(std::move(description)) {}
    int number() const { return m_number; }
    const QString& source() const { return m_source; }
    const QString& description() const { return m_description; }

private:
    int m_number;
    QString m_source;
    QString m_description;
};

} // namespace mirel
