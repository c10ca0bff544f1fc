#include "dotReport.h"

#include <algorithm>
#include <set>

#include <zovMdlFieldSemantics.h>

#include "displayText.h"
#include "fieldText.h"

namespace zovModel {

using zov::string;
using zov::metamodel::classInfo;
using zov::metamodel::fieldInfo;
using zov::metamodel::relationInfo;

namespace {

using classPtr = databaseModel::classPtr;
using fieldPtr = databaseModel::fieldPtr;
using relationPtr = databaseModel::relationPtr;

constexpr wchar_t const* cBegin = LR"(digraph model {
    rankdir=BT
    nodesep=0.5
    ranksep=0.6
    node [shape=plain, fontname="Helvetica,Arial,sans-serif", fontsize=11]
    edge [fontname="Helvetica,Arial,sans-serif", fontsize=9, color="#404040", fontcolor="#404040"]
)";

// A text inside of a label in Graphviz's table language, which reads markup.
string marked(string const& text) {
    string result;
    for (wchar_t const unit : printable(text)) {
        switch (unit) {
        case L'&': result += L"&amp;"; break;
        case L'<': result += L"&lt;"; break;
        case L'>': result += L"&gt;"; break;
        case L'"': result += L"&quot;"; break;
        case L'\xfffe':
        case L'\xffff': result += L'\xfffd'; break; // no characters, and refused in markup
        default: result += unit;
        }
    }
    return result.empty() ? string(L"&quot;&quot;") : result;
}

// A text as a plain label, in which backslashes and entities mean something; blanks keep it off its line.
string plainLabel(string const& text) {
    string result = L" ";
    for (wchar_t const unit : printable(text)) {
        if (unit == L'&') {
            result += L"&amp;";
        } else {
            result += unit;
        }
    }
    return quoted(result + L" ");
}

// The label tells classes apart that differ in letter case only.
string nodeOf(classInfo const& subject) {
    return quoted(subject.label());
}

string typeOf(fieldInfo const& field) {
    return field.type() == zov::metamodel::eCustom ? field.typeString().string() : typeForPeople(field);
}

string rowOf(fieldInfo const& field) {
    string name = marked(field.label());
    if (!field.autoExpression().empty()) name = L"/" + name;
    if (field.semantic() == zov::metamodel::eSemPrimkey) name = L"<u>" + name + L"</u>";
    return L"        <tr><td align=\"left\">" + name + L"</td><td align=\"left\"><font color=\"#707070\">" +
           marked(typeOf(field)) + L"</font></td></tr>\n";
}

// Joins the keys of the two classes, of which one is a base of the other.
bool saysWhatBaseSays(relationInfo const& relation) {
    if (!relation.fromClassInfo()->isDerivedFrom(relation.toClassInfo())) return false;
    bool areKeys = true;
    auto const look = [&areKeys](fieldPtr const& from, fieldPtr const& to) {
        areKeys =
            areKeys && from->semantic() == zov::metamodel::eSemPrimkey && to->semantic() == zov::metamodel::eSemPrimkey;
        return true;
    };
    relation.forEachFieldPair(look, true);
    return areKeys;
}

class diagram {
public:
    diagram(databaseModel const& source, std::vector<classPtr> const& chosen) : mSource(source) {
        for (classPtr const& each : source.classes()) {
            if (std::find(chosen.begin(), chosen.end(), each) != chosen.end()) mClasses.push_back(each);
        }
        for (classPtr const& each : mClasses)
            mShown.insert(each->label());
    }

    string text() const {
        string result = cBegin;
        for (classPtr const& each : mClasses)
            result += L"\n" + boxOf(each);
        string arrows;
        for (classPtr const& each : mClasses)
            arrows += arrowsFrom(each);
        return result + (arrows.empty() ? L"" : L"\n") + arrows + L"}\n";
    }

private:
    string boxOf(classPtr const& subject) const {
        string title = L"<b>" + marked(subject->label()) + L"</b>";
        if (subject->isAbstract()) title = L"<i>" + title + L"</i>";
        string box = L"    " + nodeOf(*subject) +
                     L" [label=<<table border=\"1\" cellborder=\"0\" cellspacing=\"0\" cellpadding=\"3\" "
                     L"color=\"#404040\" bgcolor=\"white\">\n"
                     L"        <tr><td colspan=\"2\" bgcolor=\"#dbe7f3\">" +
                     title + L"</td></tr>\n";
        std::vector<fieldPtr> const fields = mSource.fields(subject);
        if (!fields.empty()) box += L"        <hr/>\n";
        for (fieldPtr const& field : fields)
            box += rowOf(*field);
        return box + L"    </table>>]\n";
    }

    string arrowsFrom(classPtr const& subject) const {
        string arrows;
        for (classPtr const& base : databaseModel::baseClasses(subject)) {
            if (isShown(*base)) arrows += arrow(*subject, *base, L"arrowhead=onormal, arrowsize=1.2");
        }
        for (relationPtr const& relation : mSource.relationsFrom(subject)) {
            if (!isShown(*relation->toClassInfo()) || saysWhatBaseSays(*relation)) continue;
            wchar_t const* const head = relation->type() == zov::metamodel::eAgg ? L"diamond" : L"vee";
            arrows += arrow(*subject, *relation->toClassInfo(),
                            L"label=" + plainLabel(nameOf(*relation)) + L", arrowhead=" + head);
        }
        return arrows;
    }

    // In the database's spelling where the relation has the name of its first field.
    static string nameOf(relationInfo const& relation) {
        auto const first = relation.firstFromFieldInfo();
        return relation.scName() == first->scName() ? first->label() : relation.scName().string();
    }

    static string arrow(classInfo const& from, classInfo const& to, string const& attributes) {
        return L"    " + nodeOf(from) + L" -> " + nodeOf(to) + L" [" + attributes + L"]\n";
    }

    bool isShown(classInfo const& subject) const { return mShown.contains(subject.label()); }

    databaseModel const& mSource;
    std::vector<classPtr> mClasses;
    std::set<string> mShown; // labels, which are told apart better than names are
};

} // namespace

string dotReport(databaseModel const& source, std::vector<classPtr> const& chosen) {
    return diagram(source, chosen).text();
}

} // namespace zovModel
