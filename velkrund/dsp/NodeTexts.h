#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "velkrund/eif/EIStream.h"
#include "velkrund/platform/ormtools/CodePage.h"
#include "velkrund/platform/ormtools/LineReader.h"
#include "velkrund/platform/structures/DSPNode.h"

namespace velkrund {

/// The texts of a node in one version of structure sections. Stateless; texts are UTF-8. What cannot be read is
/// EDSPUtilError, numbers and dates that are none EConvertError; a name or a value that the version has no text for is
/// EDSPError. Characters that cannot be kept are replaced, and counted in Losses; so are names and texts that are
/// written, but come back as others.
class TNodeTexts {
 public:
  virtual ~TNodeTexts() = default;

  /// Appends a name, escaped. One that could not be read back is refused: empty, with a blank at the beginning or a
  /// colon inside.
  virtual void AppendName(std::string& Out, std::string_view Name, TTextLosses& Losses) const = 0;
  /// The word for a type. None has an empty one.
  virtual std::string_view TypeWord(TDSPValueType Type) const = 0;
  /// Whether a line may have ":" and no word behind it, as a node without value.
  virtual bool HasEmptyWord() const = 0;
  /// Appends the text of a value, of any type but None and Deleted.
  virtual void AppendValue(std::string& Out, const TDSPNode& Node, TTextLosses& Losses) const = 0;
  /// The text of a line break within the values of a type; empty where line breaks mean nothing.
  virtual std::string_view LineBreak(TDSPValueType) const { return {}; }

  /// The type of a word, which has to be exactly right; nothing for any other.
  virtual std::optional<TDSPValueType> FindType(std::string_view Word) const = 0;
  /// Sets type and value of Node. Text: without blanks at its ends.
  virtual void ReadValue(TDSPNode& Node, TDSPValueType Type, std::string_view Text, TTextLosses& Losses) const = 0;
};

/// Version 200: every type has a word of its own.
class TCurrentNodeTexts final : public TNodeTexts {
 public:
  void AppendName(std::string& Out, std::string_view Name, TTextLosses& Losses) const override;
  std::string_view TypeWord(TDSPValueType Type) const override;
  bool HasEmptyWord() const override { return true; }
  void AppendValue(std::string& Out, const TDSPNode& Node, TTextLosses& Losses) const override;
  std::string_view LineBreak(TDSPValueType Type) const override;
  std::optional<TDSPValueType> FindType(std::string_view Word) const override;
  void ReadValue(TDSPNode& Node, TDSPValueType Type, std::string_view Text, TTextLosses& Losses) const override;
};

/// Version 100: six words; names and texts in the code page; dates and amounts as floating numbers. Values come back as
/// the type that the word stands for.
class TOldNodeTexts final : public TNodeTexts {
 public:
  /// Page: borrowed.
  explicit TOldNodeTexts(const TCodePage& Page) : FPage(Page) {}

  void AppendName(std::string& Out, std::string_view Name, TTextLosses& Losses) const override;
  std::string_view TypeWord(TDSPValueType Type) const override;
  bool HasEmptyWord() const override { return false; }
  void AppendValue(std::string& Out, const TDSPNode& Node, TTextLosses& Losses) const override;
  std::optional<TDSPValueType> FindType(std::string_view Word) const override;
  void ReadValue(TDSPNode& Node, TDSPValueType Type, std::string_view Text, TTextLosses& Losses) const override;

 private:
  void AppendVariant(std::string& Out, const TKvVariant& Value, TTextLosses& Losses) const;
  void AppendText(std::string& Out, const TKvVariant& Value, TTextLosses& Losses) const;
  bool ReadVariant(std::string_view Word, std::string_view Text, TKvVariant& Value, TTextLosses& Losses) const;

  const TCodePage& FPage;
};

/// Adds Lost to those of the stream. Raises EDSPUtilError naming the node when there is any and the stream is strict
/// about text.
void ReportLosses(TEIStream& Stream, const TTextLosses& Lost, const TDSPNode& Node);
/// Counts a name or text that comes back as another one, What says why; an error as above. Place: "(Node:'a\b')".
void ReportAltered(TEIStream& Stream, std::string_view What, std::string_view Place);

}  // namespace velkrund
