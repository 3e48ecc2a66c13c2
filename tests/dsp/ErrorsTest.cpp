#include <gtest/gtest.h>

#include "tests/dsp/DSPFixture.h"

namespace velkrund::tests {
namespace {

class Errors : public testing::Test {
 protected:
  Errors() {
    auto& Structure = Platform.Structures.Get("S", 12);
    Structure.Item.Remarks = "before";
    Add(Structure.Tree, "kept", TDSPValueType::Integer, Int(1));
    FBefore.Assign(Structure.Tree);
  }
  void ExpectUnchanged() {
    EXPECT_TRUE(Platform.Structures.Get("S", 12).Tree == FBefore);
    EXPECT_EQ(Platform.Structures.Get("S", 12).Item.Remarks, "before");
    EXPECT_EQ(Platform.Structures.Stored.size(), 1u);
  }

  TDSPPlatform Platform;

 private:
  TDSPNode FBefore;
};

/// The position behind the last line of a body that ends with it.
std::string At(const std::string& Body) { return Format("(Position:%d)", Before.size() + Body.size()); }

/// The error about a name that is none of a node.
std::string NotFound(const char* Action, const char* RootNode) {
  return Format("EDSPUtilError: Can not %s DSP structure. Specified node not found (OT:12;ON:'S';Node:'%s').", Action,
                RootNode);
}

TEST_F(Errors, OfTheLines) {
  const std::string Tree = "EDSPUtilError: Can not import DSP structure. Invalid tree data structure. ";
  const std::string Sections = "EDSPUtilError: Can not import DSP";
  const struct {
    std::string Body;
    const char* RootNode;
    std::string Error;
    bool HasPosition;
  } Cases[] = {
      {"", "", Sections + " structure. Remarks section not found", false},
      {"[REMARKS]\r\n  x\r\n", "", Sections + " structure. Remarks section not found", false},
      {"x\r\n [REMARKS]\r\n  x\r\n", "", Sections + "Structure. Tree section not found", false},
      {" [REMARKS]\r\n  x\r\n y\r\n", "", Sections + " structure. Remarks section contains invalid data ", true},
      {Body("  a@\n"), "", Tree + "Unexpected end of tree section ", true},
      {Body("  a@\n  b\n"), "", Tree + "'@' is missing ", true},
      {Body(" a\n"), "", Tree + "Starting spaces is missing ", true},
      {Body("\n"), "", Tree + "Starting spaces is missing ", true},
      {Body("   a\n"), "", Tree + "Invalid level structure ", true},
      {Body("    a\n"), "", Tree + "Invalid level structure ", true},
      {Body("  a\n      b\n"), "", Tree + "Invalid level structure ", true},
      {Body("    a\n"), "R", Tree + "Invalid level structure ", true},
      {Body("  R\n  a\n"), "R", Tree + "Invalid level structure ", true},
      {Body(""), "R", Tree + "Unexpected end of tree section ", true},
      {Body("  a\n"), "kept\\", NotFound("import", "kept\\"), false},
      {Body("  a\n"), "\\kept", NotFound("import", "\\kept"), false},
      {Body("  a\n"), "kept\\\\b", NotFound("import", "kept\\\\b"), false},
      {Body("  a\n"), "\\", NotFound("import", "\\"), false},
      {Body("  a\n"), "kept\\a:b", NotFound("import", "kept\\a:b"), false},
      {Body("  a\n"), "kept\\ a", NotFound("import", "kept\\ a"), false},
      {Body("  :integer = 1\n"), "", Tree + "Empty name of node ", true},
      {Body("  #12:integer = 1\n"), "", Tree + "Empty name of node ", true},
      {Body("  \n"), "", Tree + "Empty name of node ", true},
  };
  for (const auto& Case : Cases) {
    for (const bool Old : {false, true}) {
      const auto Made = EitherSection(Old);
      Made->RootNode = Case.RootNode;
      const bool OfRemarks = Case.Error.find("invalid data") != std::string::npos;
      EXPECT_EQ(ErrorOf([&] { Import(*Made, Case.Body); }),
                Case.Error + (Case.HasPosition ? At(Case.Body) : "") + (OfRemarks ? "." : ""))
          << Case.Body;
      // Cut off by another program while it is read, a file is no less faulty.
      EXPECT_NE(ErrorOf([&] { Import(*Made, Case.Body, TKvEncoding::Utf8, 100); }), "no error") << Case.Body;
      ExpectUnchanged();
    }
  }
  const auto Nameless = Section<TEIDSPStructure>();
  Nameless->Item.ObjectName.clear();
  EXPECT_EQ(ErrorOf([&] { Import(*Nameless, Body("  a\n")); }),
            Sections +
                " structure. The structure has no name (OT:12;ON:''): the section's ObjectName is empty, and no "
                "other name is given");
  ExpectUnchanged();
}

TEST_F(Errors, OfTheValues) {
  const std::string Node = "EDSPUtilError: Can not import DSP structure. Invalid node value('";
  const std::string Error = "EDSPUtilError: Error importing DSP structure. ";
  const std::string NoInteger = " is not a valid integer value";
  const struct {
    int Versions;  // 1: 100, 2: 200, 3: both
    std::string Line;
    std::string Error;
  } Cases[] = {
      {3, "String = 'x'", "EDSPUtilError: Can not import DSP structure. Invalid node type:'String'."},
      {1, "Word = 1", "EDSPUtilError: Can not import DSP structure. Invalid node type:'Word'."},
      {1, "", "EDSPUtilError: Can not import DSP structure. Invalid node type:''."},
      {2, "=x", Node + "x') for type 0."},
      {3, "DELETED = x", Node + "x') for type 7."},
      {3, "string = x", Node + "x') for type 1."},
      {3, "string = '", Node + "'') for type 1."},
      {2, "Char = '😀'", Node + "'😀'') for type 13."},
      {2, "ANSIChar = ''", Node + "''') for type 21."},
      {2, "ANSIChar = '#'", Node + "'#'') for type 21."},
      {3, "boolean = yes", Node + "yes') for type 3."},
      {3, "double = 1,5", Error + "Invalid node value('1,5') for type 4."},
      {3, "integer = 1.5", "EConvertError: '1.5'" + NoInteger},
      {2, "integer = 2147483648", "EConvertError: '2147483648'" + NoInteger},
      {2, "byte = 256", "EConvertError: '256'" + NoInteger},
      {2, "SysDate = 2023-02-29", "EConvertError: '2023-02-29' is not a valid date"},
      {2, "Currency = 1,000", "EConvertError: '1,000' is not a valid currency value"},
      {3, "binary = 0A F", Error + "Incorrect binary value"},
      {3, "binary = 0G", "EConvertError: '$0G'" + NoInteger},
      {2, "string = 'a#12G4b'", Error + "Invalid character (#$12G4) in string constant."},
      {1, "string = 'a#1Gb'", Error + "Invalid character (#$1G) in string constant."},
      {2, "ANSIString = 'a#xyb'", Error + "Invalid character (#$xy) in string constant."},
      {2, "ANSIString = 'a\tb'", Error + "Invalid character (#9) in string constant."},
      {1, "string = 'a\nb'", Error + "Invalid character (#10) in string constant."},
      {3, "variant = ()", Error + "Unexpected end of line while reading variant value"},
      {3, "variant = DOUBLE(1.5", Error + "')' symbol expected while reading variant value"},
      {3, "variant = BOOLEAN(yes)", Error + "Invalid variant value"},
      {3, "variant = INTEGER)", Error + "Invalid variant value"},
      {3, "variant = BYTE(300)", Error + "Invalid variant value"},
      {2, "variant = CHAR(ab)", Error + "Invalid variant value"},
      {2, "variant = BYTES(0G)", Error + "Invalid variant value"},
      {2, "variant = BYTES(0)", Error + "Incorrect binary value"},
      {2, "variant = STRING(#00xx)", Error + "Invalid character (#$00xx) in string constant."},
      {1, "variant = DATE(1e9)", Error + "Invalid variant value"},
      {3, "variant = OTHER(1)", Error + "Invalid variant type of value"},
      {2, "variant = OLESTR(x)", Error + "Invalid variant type of value"},
  };
  for (const auto& Case : Cases) {
    const std::string Text = " [REMARKS]\r\n [TREE]\r\n  good\r\n  n:" + Case.Line + "\r\n";
    for (const bool Old : {false, true}) {
      if (!(Case.Versions & (Old ? 1 : 2))) continue;
      EXPECT_EQ(ErrorOf([&] { Import(*EitherSection(Old), Text); }), Case.Error);
      ExpectUnchanged();
    }
  }
  EXPECT_EQ(ErrorOf([&] { Import(*Section<TEIDSPStructure>(), Body("  a#12G4b\n")); }),
            Error + "Invalid character (#$12G4) in string constant.");
}

TEST_F(Errors, OfExport) {
  auto& Tree = Platform.Structures.Get("S", 12).Tree;
  const struct {
    const char* Name;
    TDSPValueType Type;
    TKvVariant Value;
    const char* Error;     // of version 200
    const char* OldError;  // of version 100
  } Cases[] = {
      {"a:b", TDSPValueType::None, {}, "Invalid name of node for export: a:b", nullptr},
      {" a", TDSPValueType::None, {}, "Invalid name of node for export:  a", nullptr},
      {"", TDSPValueType::None, {}, "Invalid name of node for export: ", nullptr},
      {"a@", TDSPValueType::None, {}, "", "Invalid name of node for export: a@"},
      {"n", TDSPValueType::Variant, Int(1, TKvKind(13)), "Invalid variant type of node value for export: 13", nullptr},
      {"n", TDSPValueType::Variant, Bytes("x"), "", "Invalid variant type of node value for export: 23"},
      {"n", TDSPValueType::Variant, Int(INT64_MAX, TKvKind::Int64), "",
       "Invalid variant type of node value for export: 18"},
      {"n", TDSPValueType::Variant, Unsigned(UINT64_MAX), "", "Invalid variant type of node value for export: 19"},
  };
  const auto Expected = [](std::string_view Message) {
    return Message.empty() ? "no error" : std::string("EDSPError: ").append(Message);
  };
  for (const auto& Case : Cases) {
    Tree.Clear();
    Add(Tree, Case.Name, Case.Type, Case.Value);
    EXPECT_EQ(ErrorOf([&] { Export(*Section<TEIDSPStructure>()); }), Expected(Case.Error));
    EXPECT_EQ(ErrorOf([&] { Export(*Section<TEIDSPStructureOld>()); }),
              Expected(Case.OldError ? Case.OldError : Case.Error));
  }
}

TEST_F(Errors, OfTheStore) {
  const auto Made = Section<TEIDSPStructure>();
  Made->RootNode = "kept\\x";
  EXPECT_EQ(ErrorOf([&] { Export(*Made); }), NotFound("export", "kept\\x"));
  Made->RootNode = "kept\\";
  EXPECT_EQ(ErrorOf([&] { Export(*Made); }), NotFound("export", "kept\\"));
  Made->RootNode.clear();
  Made->Item.ObjectType = 10;
  EXPECT_EQ(ErrorOf([&] { Export(*Made); }),
            "EDSPUtilError: Can not export DSP structure. Error loading DSP form (OT:10;ON:'S').");
  Made->Item.ObjectType = 12;
  Made->ChangeStructureProperties = false;
  Platform.Structures.FailSave = true;
  EXPECT_EQ(ErrorOf([&] { Import(*Made, Body("  a\n")); }),
            "EDSPUtilError: Can not import DSP structure. Error saving DSP form (OT:12;ON:'S').");
  EXPECT_EQ(Platform.Log, (std::vector<std::string>{"start", "rollback"}));
  Platform.Structures.FailLoad = true;
  EXPECT_EQ(ErrorOf([&] { Import(*Made, Body("  a\n")); }),
            "EDSPUtilError: Can not import DSP structure. Error loading DSP form (OT:12;ON:'S').");
  EXPECT_EQ(ErrorOf([&] { Export(*Made); }),
            "EDSPUtilError: Can not export DSP structure. Error loading DSP form (OT:12;ON:'S').");
  ExpectUnchanged();
}

}  // namespace
}  // namespace velkrund::tests
