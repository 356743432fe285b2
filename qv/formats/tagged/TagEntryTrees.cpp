// One dictionary entry in the two tree forms: SBF elements with typed
// attributes, and XML elements whose enumerations are texts.
#include "qv/core/BoolConversions.h"
#include "qv/core/WideChar.h"
#include "qv/formats/tagged/SBFile.h"
#include "qv/formats/tagged/TagFile.h"
#include "qv/formats/tagged/XMLFile.h"

namespace qv {

namespace {

constexpr char16_t kEntry[] = u"TagEntry";
constexpr char16_t kTextValue[] = u"TextValue";
constexpr char16_t kValue[] = u"Value";

// "%g" when it reads back exactly, otherwise all 17 digits: a bound never
// changes on its way through the XML form.
CString BoundText(double v) {
    CString text = CString::FromFormat(u"%g", v);
    if (_wtof(text.GetUTF16()) == v || v != v) return text;
    return CString::FromFormat(u"%.17g", v);
}

} // namespace

bool CTagEntry::Save(CSBFile &f) const {
    CSBFile::CElement *e = CSBFile::CElement::New();
    e->SetName(kEntry);
    e->SetAttribute(u"Name", GetName());
    e->SetAttribute(u"Description", GetDescription());
    e->SetAttribute(u"DataType", int32_t(dataType));
    e->SetAttribute(u"UseNumericBounds", useNumericBounds);
    e->SetAttribute(u"LowBound", lowBound);
    e->SetAttribute(u"HighBound", highBound);
    e->SetAttribute(u"TextValuesMode", int32_t(textValuesMode));
    e->SetAttribute(u"Category", int32_t(category));
    e->SetAttribute(u"WriteMode", int32_t(writeMode));
    e->SetAttribute(u"Units", int32_t(units));
    e->SetAttribute(u"Location", int32_t(location));
    for (uint32_t i = 0; i < textValues.nItems(); ++i) {
        CSBFile::CElement *value = CSBFile::CElement::New();
        value->SetName(kTextValue);
        value->SetAttribute(kValue, textValues.GetAt(i).GetUTF16());
        value->SetSource(&f);
        tree::AppendChild(e, value);
    }
    if (f.Insert(e, false)) return true;
    delete e;
    return false;
}

bool CTagEntry::Load(CSBFile &f) {
    *this = CTagEntry();
    CSBFile::CElement *e = f.GetCurr();
    if (!e) return false;
    name = static_cast<char16_t const *>(e->GetAttribute(u"Name"));
    description = static_cast<char16_t const *>(e->GetAttribute(u"Description"));
    dataType = DATA_TYPE(int32_t(e->GetAttribute(u"DataType")));
    useNumericBounds = bool(e->GetAttribute(u"UseNumericBounds"));
    lowBound = double(e->GetAttribute(u"LowBound"));
    highBound = double(e->GetAttribute(u"HighBound"));
    textValuesMode = TEXT_VALUES_MODE(int32_t(e->GetAttribute(u"TextValuesMode")));
    category = CATEGORY(int32_t(e->GetAttribute(u"Category")));
    writeMode = WRITE_MODE(int32_t(e->GetAttribute(u"WriteMode")));
    units = UNITS(int32_t(e->GetAttribute(u"Units")));
    location = LOCATION(int32_t(e->GetAttribute(u"Location")));
    for (CSBFile::CElement *c = e->firstChild; c; c = c->next)
        if (_wcsicmp(c->GetName(), kTextValue) == 0)
            textValues.Add(CString(static_cast<char16_t const *>(c->GetAttribute(kValue))));
    return true;
}

bool CTagEntry::Save(CXMLFile &f) const {
    auto *e = new CXMLFile::CNode(kEntry);
    CXMLFile::CAttribArray &a = e->attributes;
    a[u"Name"] = GetName();
    a[u"Description"] = GetDescription();
    a[u"DataType"] = DataTypeToStr(dataType);
    a[u"UseNumericBounds"] = CBool::ToString(useNumericBounds);
    a[u"LowBound"] = BoundText(lowBound);
    a[u"HighBound"] = BoundText(highBound);
    a[u"TextValuesMode"] = TextValuesModeToStr(textValuesMode);
    a[u"Category"] = CategoryToStr(category);
    a[u"WriteMode"] = WriteModeToStr(writeMode);
    a[u"Units"] = UnitsToStr(units);
    a[u"Location"] = LocationToStr(location);
    for (uint32_t i = 0; i < textValues.nItems(); ++i)
        e->InsertChild(new CXMLFile::CNode(kTextValue, textValues.GetAt(i).GetUTF16()), false);
    if (f.Insert(e, false)) return true;
    delete e;
    return false;
}

bool CTagEntry::Load(CXMLFile &f) {
    *this = CTagEntry();
    CXMLFile::CNode *e = f.GetCurr();
    if (!e) return false;
    name = e->GetAttribute(u"Name");
    description = e->GetAttribute(u"Description");
    dataType = StrToDataType(e->GetAttribute(u"DataType"));
    useNumericBounds = CBool::Parse(e->GetAttribute(u"UseNumericBounds"));
    lowBound = _wtof(e->GetAttribute(u"LowBound"));
    highBound = _wtof(e->GetAttribute(u"HighBound"));
    textValuesMode = StrToTextValuesMode(e->GetAttribute(u"TextValuesMode"));
    category = StrToCategory(e->GetAttribute(u"Category"));
    writeMode = StrToWriteMode(e->GetAttribute(u"WriteMode"));
    units = StrToUnits(e->GetAttribute(u"Units"));
    location = StrToLocation(e->GetAttribute(u"Location"));
    for (CXMLFile::CNode *c = e->firstChild; c; c = c->next)
        if (_wcsicmp(c->GetName(), kTextValue) == 0) textValues.Add(c->value);
    return true;
}

} // namespace qv
