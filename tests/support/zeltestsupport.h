#ifndef ZELTESTSUPPORT_H
#define ZELTESTSUPPORT_H

#include <gtest/gtest.h>

#include <QString>

#include <cmath>
#include <ostream>
#include <string>
#include <type_traits>

namespace ZELTest {

//! Round trips through a stream must give back the very same bits.
constexpr double kExact = 0.0;
//! Results of a few arithmetic operations on values of order one.
constexpr double kTight = 1e-12;
//! Results of the frame conventions, which must hold to about one rounding step.
constexpr double kFrame = 1e-15;
//! Unit conversions whose expected values are quoted to a few digits.
constexpr double kQuoted = 1e-5;

//! Equal doubles within tolerance, where two NaNs count as equal.
inline ::testing::AssertionResult SameDouble(double expected, double actual, double tolerance)
{
    if (std::isnan(expected) && std::isnan(actual))
        return ::testing::AssertionSuccess();
    if (std::isnan(expected) != std::isnan(actual) || std::abs(expected - actual) > tolerance)
        return ::testing::AssertionFailure() << "expected " << expected << ", got " << actual
                                             << " (tolerance " << tolerance << ")";
    return ::testing::AssertionSuccess();
}

//! The exact text of an exception's message, for verbatim assertions.
template <typename Exception, typename Statement>
::testing::AssertionResult ThrowsWithMessage(Statement&& statement, const QString& message)
{
    try {
        statement();
    } catch (const std::exception& e) {
        if constexpr (!std::is_same_v<Exception, std::exception>) {
            if (!dynamic_cast<const Exception*>(&e))
                return ::testing::AssertionFailure() << "threw another exception: " << e.what();
        }
        const QString actual = QString::fromUtf8(e.what());
        if (actual == message)
            return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure() << "message was \"" << actual.toStdString()
                                             << "\", expected \"" << message.toStdString() << "\"";
    }
    return ::testing::AssertionFailure() << "threw nothing, expected \"" << message.toStdString() << "\"";
}

//! A POSIX extended regular expression that matches the text literally, for the
//! output of death tests (only the ERE metacharacters are escaped: GNU regex reads
//! an escaped ordinary character such as a backslash before < as an operator).
inline std::string Literally(const QString& text)
{
    static const std::string metacharacters = ".[]{}()\\*+?^$|";
    std::string pattern;
    for (const char c : text.toStdString()) {
        if (metacharacters.find(c) != std::string::npos)
            pattern += '\\';
        pattern += c;
    }
    return pattern;
}

} // namespace ZELTest

//! EXPECT that `statement` throws `Exception` whose what() is exactly `message`.
#define EXPECT_THROW_MESSAGE(statement, Exception, message) \
    EXPECT_TRUE(::ZELTest::ThrowsWithMessage<Exception>([&] { statement; }, QString(message)))

//! Lets GoogleTest print a test case struct as its `name` member alone.
//!
//! Without a printer GoogleTest prints a struct parameter as a dump of its bytes,
//! pointers included, and gtest_discover_tests puts the printed parameter into the
//! CTest test name, which then changes from run to run. Write
//! `ZELTEST_PRINT_CASE_BY_NAME(CaseType);` right after the struct, in the struct's
//! own namespace (an anonymous one included), so that argument-dependent lookup
//! finds the printer. The name must be a short UpperCamelCase phrase of what the case is:
//! letters, digits, underscores, dots and minus signs only, so that it reads well
//! in a test name and needs no quoting in a `ctest -R` pattern. The printer is a
//! plain function, not a template, so it is chosen over GoogleTest's own PrintTo
//! template without ambiguity.
#define ZELTEST_PRINT_CASE_BY_NAME(CaseType)                          \
    inline void PrintTo(const CaseType& testCase, std::ostream* os) \
    {                                                                 \
        *os << testCase.name;                                         \
    }                                                                 \
    static_assert(std::is_class_v<CaseType>, #CaseType " is a test case struct with a name")

#endif // ZELTESTSUPPORT_H
