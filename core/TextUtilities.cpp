#include "core/TextUtilities.h"

#include "core/Ports.h"
#include "core/Units.h"
#include "persistence/Numbers.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace velmora::core {
namespace {

constexpr std::int64_t kMSPerMinute = 60000;
constexpr std::int64_t kMSPerSecond = 1000;

std::string Digits(std::int64_t value, std::size_t atLeast)
{
    std::string digits = std::to_string(value);
    if (digits.size() < atLeast) {
        digits.insert(0, atLeast - digits.size(), '0');
    }
    return digits;
}

struct SignedTime {
    /// "-" or "".
    std::string sign;
    std::int64_t ms;
};

SignedTime SplitSign(std::int32_t ms)
{
    return {ms < 0 ? "-" : "", std::abs(std::int64_t{ms})};
}

std::int32_t MixParts(std::int32_t first, std::int32_t second, float t)
{
    const auto one = static_cast<double>((1.0f - t) * static_cast<float>(first));
    const auto two = static_cast<double>(t * static_cast<float>(second));
    return std::min(RoundToInt(one) + RoundToInt(two), 255);
}

} // namespace

std::string FormatTimePos(std::int32_t MS, bool Thousandths)
{
    const auto [sign, ms] = SplitSign(MS);
    const std::int64_t fraction = ms % kMSPerSecond;
    std::string digits = Thousandths ? Digits(fraction, 3) : Digits(fraction / 10, 2);
    if (Thousandths && digits.back() == '0') {
        digits.pop_back();
    }
    return sign + Digits(ms / kMSPerMinute, 2) + ':' + Digits(ms % kMSPerMinute / kMSPerSecond, 2) + '.' + digits;
}

std::string FormatTimeRounded(std::int32_t MS)
{
    const auto [sign, ms] = SplitSign(MS);
    const float seconds = static_cast<float>(ms % kMSPerMinute) / static_cast<float>(kMSPerSecond);
    const auto hundredths = static_cast<std::int64_t>(std::round(static_cast<double>(seconds) * 100));
    return sign + Digits(ms / kMSPerMinute, 2) + ':' + Digits(hundredths / 100, 2) + '.' + Digits(hundredths % 100, 2);
}

std::int32_t ParseTimePos(std::string_view Text, bool& Ok, bool AllowNegative)
{
    std::string text(Text);
    std::erase(text, ' ');
    const bool negative = text.starts_with('-');
    std::string_view seconds = std::string_view(text).substr(negative ? 1 : 0);
    double minutes = 0;
    if (const std::size_t colon = seconds.find(':'); colon != std::string_view::npos) {
        const auto prefix = persistence::NumericPrefix(seconds.substr(0, colon));
        minutes = prefix ? std::nearbyint(*prefix) : std::numeric_limits<double>::infinity();
        seconds.remove_prefix(colon + 1);
    }
    const double secondsValue = persistence::NumericPrefix(seconds).value_or(std::numeric_limits<double>::infinity());
    const double ms = std::nearbyint(secondsValue * kMSPerSecond + minutes * kMSPerMinute);
    Ok = std::abs(ms) <= std::numeric_limits<std::int32_t>::max() && (!negative || AllowNegative);
    return Ok ? static_cast<std::int32_t>(negative ? -ms : ms) : 0;
}

std::optional<double> GainToDB(double Gain)
{
    if (!(Gain > 0)) {
        return std::nullopt;
    }
    return 6 * std::log2(Gain);
}

double DBToGain(double DB)
{
    return std::exp2(DB / 6);
}

double PeakPairToDB(std::int32_t Left, std::int32_t Right)
{
    const std::int32_t mean = RoundToInt((static_cast<double>(Left) + static_cast<double>(Right)) / 2);
    return mean <= 0 ? -100.0 : 20 * std::log10(mean / 32768.0);
}

double ClampValue(double Value, double Min, double Max)
{
    if (Value < Min) {
        return Min;
    }
    return Value > Max ? Max : Value;
}

double FloorToStep(double Value, double Step)
{
    const double quotient = Value / Step;
    return Step == 0 || std::floor(quotient) == quotient ? Value : std::floor(quotient) * Step;
}

double FractionOfStep(double Value, double Step)
{
    const double quotient = Value / Step;
    return Step == 0 ? 0 : quotient - std::floor(quotient);
}

void SplitRGB(std::int32_t Color, std::int32_t& R, std::int32_t& G, std::int32_t& B)
{
    R = Color & 0xFF;
    G = (Color >> 8) & 0xFF;
    B = (Color >> 16) & 0xFF;
}

std::int32_t BlendColors(std::int32_t Color1, std::int32_t Color2, float T)
{
    const float t = T > 0 ? std::min(T, 1.0f) : 0.0f;
    std::int32_t r1 = 0, g1 = 0, b1 = 0;
    std::int32_t r2 = 0, g2 = 0, b2 = 0;
    SplitRGB(Color1, r1, g1, b1);
    SplitRGB(Color2, r2, g2, b2);
    return MixParts(r1, r2, t) | MixParts(g1, g2, t) << 8 | MixParts(b1, b2, t) << 16;
}

std::string FolderOfPath(std::string_view Path)
{
    return std::string(Path.substr(0, Path.rfind('\\')));
}

std::string FileNameOfPath(std::string_view Path)
{
    const std::size_t last = Path.rfind('\\');
    return std::string(last == std::string_view::npos ? Path : Path.substr(last + 1));
}

std::string FileExtensionCut(std::string_view Name)
{
    return std::string(Name.substr(0, Name.rfind('.')));
}

std::string CollapseBlanks(std::string_view Text)
{
    std::string result(Trim(Text));
    const auto both = [](char a, char b) { return a == ' ' && b == ' '; };
    result.erase(std::unique(result.begin(), result.end(), both), result.end());
    return result;
}

std::string MakeValidFileName(std::string_view Name)
{
    constexpr std::string_view kForbidden = "\\/:*?<>|\"";
    std::string result;
    for (const char c : Trim(Name)) {
        const auto code = static_cast<unsigned char>(c);
        const bool continues = (code & 0xC0) == 0x80;
        if (continues) {
            continue; // The first byte of the character has become the blank.
        }
        result += code < 32 || code > 126 || kForbidden.find(c) != std::string_view::npos ? ' ' : c;
    }
    return result;
}

void StripXMLHeader(std::string& Text)
{
    const std::size_t begin = Text.find("<?xml");
    const std::size_t end = begin == std::string::npos ? begin : Text.find("?>", begin);
    if (end != std::string::npos) {
        Text.replace(begin, end + 2 - begin, end + 2 - begin, ' ');
    }
}

std::string LowerCase(std::string_view Text)
{
    std::string result(Text);
    std::ranges::transform(result, result.begin(),
                           [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return result;
}

std::string_view Trim(std::string_view Text)
{
    const std::size_t first = Text.find_first_not_of(' ');
    return first == std::string_view::npos ? std::string_view{}
                                           : Text.substr(first, Text.find_last_not_of(' ') - first + 1);
}

void AssertEventTypeCount(MessageBoxes& messages, std::string_view Where, std::int32_t TypeCount)
{
    if (TypeCount != 1) {
        messages.Show(std::string("Not all events type supported\n").append(Where));
    }
}

} // namespace velmora::core
