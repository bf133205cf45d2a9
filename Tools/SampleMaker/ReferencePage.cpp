#include "SampleMaker/ReferencePage.h"

#include "vro/PluginReference.h"

#include <algorithm>
#include <cctype>
#include <vector>

using vro::Json;

namespace
{

constexpr const char *INTRODUCTION = "# Plugin reference\n\n"
                                     "Everything that a layer or a group of an effect can be made of. A layer has one "
                                     "spawner, one stomper, one transformer and\n"
                                     "one visualizer, and any number of modifiers, which work in their order; a group "
                                     "has one physics, modifiers and lights.\n"
                                     "`scripts/plugin-reference` makes this page from the engine's own tables.\n";

struct Family
{
    const char *Name;
    const char *Title;
    const char *Text;
};

constexpr Family FAMILIES[] = {
    {"Spawner", "Spawners", "How particles come into being: how many, where, and how fast they start."},
    {"Modifier", "Modifiers", "What changes particles while they live."},
    {"Stomper", "Stompers", "When particles end."},
    {"Transformer", "Transformers", "In whose space particles live: the world's, the group's or the screen's."},
    {"Visualizer", "Visualizers", "How particles are drawn."},
    {"Renderable physics", "Group physics", "What moves a whole group or model."},
    {"Renderable modifier", "Group modifiers", "What changes a whole group or model."},
    {"Renderable killer", "Group killers", "What ends a whole group or model."},
    {"Light controller", "Lights", "Light sources that a group carries."},
};

/// In one line, with the marks of tables and of HTML taken as they are.
std::string In_Cell(const std::string &text)
{
    std::string cell;
    for (const char c : text) {
        if (c == '\n')
            cell += ' ';
        else if (c == '|')
            cell += "\\|";
        else if (c == '<')
            cell += "&lt;";
        else
            cell += c;
    }
    cell.erase(0, cell.find_first_not_of(' '));
    return cell;
}

std::string Value_Text(const Json &value)
{
    if (value.is_string()) return value.get<std::string>();
    if (value.is_object() && value.contains("label")) return value["label"].get<std::string>();
    if (value.is_object() && value.contains("keys")) return std::to_string(value["keys"].size()) + " keys";
    if (value.is_object()) return "a shape";
    std::string text = vro::To_Text(value);
    while (!text.empty() && text.back() == '\n') text.pop_back();
    return text.size() > 40 ? std::to_string(value.size()) + " entries" : text;
}

std::string Range_Text(const Json &parameter)
{
    if (parameter.contains("min")) return Value_Text(parameter["min"]) + " to " + Value_Text(parameter["max"]);
    std::string labels;
    if (parameter.contains("labels"))
        for (const Json &label : parameter["labels"]) labels += (labels.empty() ? "" : ", ") + label.get<std::string>();
    return labels;
}

void Append_Kind(const Json &kind, std::string &page)
{
    page += "\n### " + In_Cell(kind["name"]) + "\n\n" + In_Cell(kind["description"]) + "\n\n`" +
            kind["class"].get<std::string>() + "`, number " + std::to_string(kind["id"].get<int>()) + ", category " +
            kind["category"].get<std::string>() +
            (kind["obsolete"].get<bool>() ? ". Obsolete: kept for old files." : ".") + "\n";
    if (kind["parameters"].empty()) return;
    page += "\n| parameter | kind | default | range | |\n|---|---|---|---|---|\n";
    for (const Json &parameter : kind["parameters"])
        page += "| " + In_Cell(parameter["name"]) + " | " + In_Cell(parameter["kind"]) + " | " +
                In_Cell(Value_Text(parameter["default"])) + " | " + In_Cell(Range_Text(parameter)) + " | " +
                In_Cell(parameter["description"]) + " |\n";
}

std::string Folded(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

/// Of a heading, as Markdown's readers make it.
std::string Anchor_Of(std::string heading)
{
    std::replace(heading.begin(), heading.end(), ' ', '-');
    return Folded(std::move(heading));
}

} // namespace

std::string Make_Reference_Page()
{
    const Json reference = vro::Get_Plugin_Reference();
    std::string page = INTRODUCTION;
    for (const Family &family : FAMILIES)
        page += (&family == FAMILIES ? "\n" : " ·\n") + ("[" + std::string(family.Title) + "](#") +
                Anchor_Of(family.Title) + ")";
    page += "\n";
    for (const Family &family : FAMILIES) {
        std::vector<const Json *> kinds;
        for (const Json &kind : reference)
            if (kind["family"] == family.Name) kinds.push_back(&kind);
        std::stable_sort(kinds.begin(), kinds.end(), [](const Json *left, const Json *right) {
            const bool isOld = (*left)["obsolete"].get<bool>();
            if (isOld != (*right)["obsolete"].get<bool>()) return !isOld;
            return Folded((*left)["name"]) < Folded((*right)["name"]);
        });
        page += std::string("\n## ") + family.Title + "\n\n" + family.Text + "\n";
        for (const Json *kind : kinds) Append_Kind(*kind, page);
    }
    return page;
}
