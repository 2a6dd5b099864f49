#pragma once
// The one error type of the host platform: a number and a description,
// as the host's objects report them. Handlers catch it at their top.
#include <QString>
#include <exception>
#include <string>

class HostError : public std::exception {
public:
    HostError(long number, QString description)
        : m_number(number), m_description(std::move(description)),
          m_what(m_description.toStdString()) {}

    long number() const noexcept { return m_number; }
    const QString& description() const noexcept { return m_description; }
    const char* what() const noexcept override { return m_what.c_str(); }

private:
    long m_number;
    QString m_description;
    std::string m_what;
};

// Error numbers the built-in host objects use.
namespace HostErrors {
constexpr long ObjectNotSet = 91;        // a reference that holds nothing
constexpr long CannotCreateObject = 429; // unknown ProgID
constexpr long KeyNotFound = 5;          // missing record key / recordset field
constexpr long DuplicateKey = 457;       // a key added twice
constexpr long SubscriptOutOfRange = 9;
constexpr long TypeMismatch = 13;
constexpr long Overflow = 6;
constexpr long Database = -2147217900;   // the engine refused a statement
constexpr long Unsupported = -2147217887; // the T-SQL bridge does not know a construct
constexpr long FileError = 75;
}
