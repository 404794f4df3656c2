// The property-editor registry and the framework's own editors, driven as a designer does.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "DesignIntf.h"
#include "TClassInfo.h"
#include "TDataModule.h"

namespace fw {
namespace {

using ::testing::ElementsAre;

enum TShade : uint8_t { shLight, shDark };

class TGadget : public TComponent {
 public:
  explicit TGadget(TComponent* owner) : TComponent(owner) {}
  static const TClassInfo& StaticClass() {
    static const TClassInfo info =
        TClassBuilder<TGadget>("TGadget", &TComponent::StaticClass())
            .Creatable()
            .Property("Caption", &TGadget::Caption, &TGadget::SetCaption, "")
            .Property("Count", &TGadget::Count, &TGadget::SetCount, 0)
            .Property("Ratio", &TGadget::Ratio, &TGadget::SetRatio, 0.0)
            .Property("Visible", &TGadget::Visible, &TGadget::SetVisible, true)
            .Enum("Shade", {"shLight", "shDark"}, &TGadget::Shade, &TGadget::SetShade)
            .Reference("Partner", &TGadget::Partner, &TGadget::SetPartner)
            .Property("Serial", &TGadget::Serial, nullptr)
            .Build();
    return info;
  }
  const TClassInfo& ClassType() const override { return StaticClass(); }

  const std::string& Caption() const { return FCaption; }
  void SetCaption(const std::string& v) {
    if (v == "forbidden") throw EConvertError("Caption refused");
    FCaption = v;
  }
  int16_t Count() const { return FCount; }
  void SetCount(int16_t v) { FCount = v; }
  double Ratio() const { return FRatio; }
  void SetRatio(double v) { FRatio = v; }
  bool Visible() const { return FVisible; }
  void SetVisible(bool v) { FVisible = v; }
  TShade Shade() const { return FShade; }
  void SetShade(TShade v) { FShade = v; }
  TGadget* Partner() const { return FPartner; }
  void SetPartner(TGadget* v) { FPartner = v; }
  int32_t Serial() const { return 7; }

 private:
  std::string FCaption;
  int16_t FCount = 0;
  double FRatio = 0;
  bool FVisible = true;
  TShade FShade = shLight;
  TGadget* FPartner = nullptr;
};

class TBigGadget : public TGadget {
 public:
  using TGadget::TGadget;
  static const TClassInfo& StaticClass() {
    static const TClassInfo info =
        TClassBuilder<TBigGadget>("TBigGadget", &TGadget::StaticClass()).Creatable().Build();
    return info;
  }
  const TClassInfo& ClassType() const override { return StaticClass(); }
};

class CountingDesigner : public IDesigner {
 public:
  explicit CountingDesigner(TComponent* root) : FRoot(root) {}
  TComponent* Root() const override { return FRoot; }
  void Modified() override { ++Changes; }
  bool ExecuteOpenDialog(TOpenDialog&) override { return false; }
  int Changes = 0;

 private:
  TComponent* FRoot;
};

class EditorTest : public ::testing::Test {
 protected:
  EditorTest() : Form(new TDataModule(nullptr)), Designer(Form.get()) {
    Gadget = new TBigGadget(Form.get());
    Gadget->SetName("Main");
    (new TGadget(Form.get()))->SetName("Spare");
    (new TDataModule(Form.get()))->SetName("Other");  // not a gadget: never offered
  }
  std::unique_ptr<TPropertyEditor> Editor(const std::string& prop) {
    return GetPropertyEditor(Designer, {Gadget}, *Gadget->ClassType().FindProperty(prop));
  }
  std::vector<std::string> Values(const std::string& prop) {
    std::vector<std::string> values;
    Editor(prop)->GetValues([&](const std::string& v) { values.push_back(v); });
    return values;
  }

  TComponentPtr<TDataModule> Form;
  CountingDesigner Designer;
  TGadget* Gadget = nullptr;
};

TEST_F(EditorTest, EachKindRoundTripsThroughTextAndTellsTheDesigner) {
  struct Case {
    const char* Prop;
    const char* Text;
    const char* Shown;
  };
  for (const Case& c :
       {Case{"Caption", "lamp", "lamp"}, Case{"Count", " 42 ", "42"}, Case{"Ratio", "2.5", "2.5"},
        Case{"Visible", "false", "False"}, Case{"Shade", "SHDARK", "shDark"},
        Case{"Partner", "Spare", "Spare"}, Case{"Partner", "", ""}}) {
    Editor(c.Prop)->SetValue(c.Text);
    EXPECT_EQ(Editor(c.Prop)->GetValue(), c.Shown) << c.Prop;
  }
  EXPECT_EQ(Designer.Changes, 7);
  EXPECT_THAT(Values("Shade"), ElementsAre("shLight", "shDark"));
  EXPECT_THAT(Values("Visible"), ElementsAre("False", "True"));
  EXPECT_THAT(Values("Partner"), ElementsAre("Main", "Spare"));
  EXPECT_TRUE(Editor("Partner")->GetAttributes().Contains(paSortList));
}

TEST_F(EditorTest, RejectedTextKeepsTheOldValue) {
  Gadget->SetCaption("lamp");
  Gadget->SetCount(3);
  for (const auto& [prop, text] :
       std::vector<std::pair<std::string, std::string>>{{"Caption", "forbidden"},
                                                        {"Count", "three"},
                                                        {"Count", "40000"},
                                                        {"Ratio", "1,2,3"},
                                                        {"Shade", "shGrey"},
                                                        {"Partner", "Other"},
                                                        {"Partner", "Nobody"},
                                                        {"Serial", "8"}})
    EXPECT_THROW(Editor(prop)->SetValue(text), Exception) << prop << " = " << text;
  EXPECT_EQ(Gadget->Caption(), "lamp");
  EXPECT_EQ(Gadget->Count(), 3);
  EXPECT_EQ(Gadget->Partner(), nullptr);
  EXPECT_EQ(Designer.Changes, 0);
  EXPECT_TRUE(Editor("Serial")->GetAttributes().Contains(paReadOnly));
}

const TPropertyEditorClass& NamedEditor() {
  static const auto cls = MakePropertyEditorClass<TStringProperty>("TNamedEditor");
  return cls;
}
const TPropertyEditorClass& ClassEditor() {
  static const auto cls = MakePropertyEditorClass<TStringProperty>("TClassEditor");
  return cls;
}
const TPropertyEditorClass& NearEditor() {
  static const auto cls = MakePropertyEditorClass<TStringProperty>("TNearEditor");
  return cls;
}

TEST(PropertyEditorRegistry, TheMostSpecificRegistrationWins) {
  const TPropInfo& caption = *TGadget::StaticClass().FindProperty("Caption");
  EXPECT_EQ(FindPropertyEditor(TBigGadget::StaticClass(), caption)->EditorClass->Name,
            "TStringProperty");
  RegisterPropertyEditor(pkString, &TGadget::StaticClass(), "", ClassEditor());
  EXPECT_EQ(FindPropertyEditor(TBigGadget::StaticClass(), caption)->EditorClass->Name,
            "TClassEditor");
  RegisterPropertyEditor(pkString, nullptr, "caption", NamedEditor());  // a name beats a class
  EXPECT_EQ(FindPropertyEditor(TBigGadget::StaticClass(), caption)->EditorClass->Name,
            "TNamedEditor");
  RegisterPropertyEditor(pkString, &TBigGadget::StaticClass(), "Caption", NearEditor());
  RegisterPropertyEditor(pkString, &TGadget::StaticClass(), "Caption",
                         ClassEditor());  // farther, though later
  EXPECT_EQ(FindPropertyEditor(TBigGadget::StaticClass(), caption)->EditorClass->Name,
            "TNearEditor");
  EXPECT_EQ(FindPropertyEditor(TGadget::StaticClass(), caption)->EditorClass->Name, "TClassEditor");

  const size_t count = RegisteredPropertyEditors().size();
  RegisterPropertyEditor(pkString, &TGadget::StaticClass(), "Caption", ClassEditor());
  EXPECT_EQ(RegisteredPropertyEditors().size(), count);

  TPropInfo set;
  set.Kind = pkSet;
  EXPECT_EQ(FindPropertyEditor(TGadget::StaticClass(), set), nullptr);
}

TEST(ComponentPalette, PagesAndClassesKeepRegistrationOrder) {
  TComponentPalette palette;
  palette.Add("Gadgets", TBigGadget::StaticClass());
  palette.Add("Modules", TDataModule::StaticClass());
  palette.Add("gadgets", TGadget::StaticClass());
  palette.Add("Gadgets", TBigGadget::StaticClass());
  ASSERT_EQ(palette.Pages().size(), 2u);
  EXPECT_EQ(palette.Pages()[0].Name, "Gadgets");
  EXPECT_THAT(palette.FindPage("GADGETS")->Classes,
              ElementsAre(&TBigGadget::StaticClass(), &TGadget::StaticClass()));
  EXPECT_THROW(palette.Add("", TGadget::StaticClass()), EComponentError);
  EXPECT_THROW(palette.Add("Gadgets", TPersistent::StaticClass()),
               EComponentError);  // not creatable
}

TEST(RootDesigner, FoundFromAnyOwnedComponentAndForgottenWithTheForm) {
  auto* form = new TDataModule(nullptr);
  TGadget* gadget = new TGadget(form);
  CountingDesigner designer(form);
  SetRootDesigner(form, &designer);
  EXPECT_EQ(FindRootDesigner(gadget), &designer);
  EXPECT_EQ(FindRootDesigner(form), &designer);
  form->Free();
  auto* next = new TDataModule(nullptr);  // may reuse the address
  EXPECT_EQ(FindRootDesigner(next), nullptr);
  next->Free();
  EXPECT_EQ(FindRootDesigner(nullptr), nullptr);
}

}  // namespace
}  // namespace fw
