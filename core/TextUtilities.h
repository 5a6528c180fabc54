#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Times, levels, colours and paths as text. No function keeps a state or regards the locale.
namespace velmora::core {

class MessageBoxes;

/// "mm:ss.hh", cut to hundredths; with `Thousandths` "mm:ss.ttt", without the last digit when that is 0. Minutes take
/// as many digits as they need; a negative time has a leading "-".
std::string FormatTimePos(std::int32_t MS, bool Thousandths);

/// "mm:ss.hh", rounded to hundredths without carry: 59999 ms are "00:60.00".
std::string FormatTimeRounded(std::int32_t MS);

/// A time in ms from "minutes:seconds" or "seconds", blanks ignored. Text without a number counts as 0. `Ok` is false,
/// and the result 0, for a negative time without `AllowNegative` and for one that does not fit.
std::int32_t ParseTimePos(std::string_view Text, bool& Ok, bool AllowNegative);

/// 6 x log2(`Gain`); nothing for a gain of 0 or below. 6 dB are exactly a factor of 2.
std::optional<double> GainToDB(double Gain);
double DBToGain(double DB);

/// The mean of two levels of 0..32768 in dB of full scale (20 x log10); -100 for silence.
double PeakPairToDB(std::int32_t Left, std::int32_t Right);

double ClampValue(double Value, double Min, double Max);
/// The greatest multiple of `Step` not above `Value`. A step of 0 gives `Value`.
double FloorToStep(double Value, double Step);
/// How far `Value` is above that multiple, as a part of `Step`: 0 up to 1.
double FractionOfStep(double Value, double Step);

/// Parts of a colour 0x00BBGGRR.
void SplitRGB(std::int32_t Color, std::int32_t& R, std::int32_t& G, std::int32_t& B);
/// `T` from 0 (all `Color1`) to 1 (all `Color2`); the terms of each part are rounded one by one.
std::int32_t BlendColors(std::int32_t Color1, std::int32_t Color2, float T);

/// Before the last backslash; the whole text if there is none.
std::string FolderOfPath(std::string_view Path);
/// Behind the last backslash; the whole text if there is none.
std::string FileNameOfPath(std::string_view Path);
/// Before the last "."; the whole text if there is none.
std::string FileExtensionCut(std::string_view Name);
/// Trimmed, with one blank for each run of them.
std::string CollapseBlanks(std::string_view Text);
/// Trimmed, with a blank for each character that a file name cannot have or that is not plain ASCII.
std::string MakeValidFileName(std::string_view Name);

/// Overwrites the first "<?xml" up to its "?>" with blanks.
void StripXMLHeader(std::string& Text);

/// ASCII letters in lower case, all else as it stands.
std::string LowerCase(std::string_view Text);
/// Without the blanks around it.
std::string_view Trim(std::string_view Text);

/// Each place that handles events by their type calls this with the number of types that it was written for.
void AssertEventTypeCount(MessageBoxes& messages, std::string_view Where, std::int32_t TypeCount);

} // namespace velmora::core
