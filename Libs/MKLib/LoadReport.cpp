#include "MKLib/LoadReport.h"

#include <utility>

namespace LoadReport
{

namespace
{

thread_local Collector *current = nullptr;

} // namespace

Collector::Collector() : Previous(std::exchange(current, this))
{
}

Collector::~Collector()
{
    current = Previous;
}

void Collector::Add(std::string found, std::string result)
{
    if (Findings.size() >= MAX_FINDINGS) {
        ++LeftOut;
        return;
    }
    std::string path;
    for (const Place *place = Innermost; place; place = place->Outer) {
        std::string step = place->What;
        if (place->Index >= 0) step.append(" ").append(std::to_string(place->Index));
        if (!path.empty()) step.append(" / ").append(path);
        path = std::move(step);
    }
    Findings.push_back({std::move(path), std::move(found), std::move(result)});
}

bool Is_Wanted()
{
    return current != nullptr;
}

void Add(std::string found, std::string result)
{
    if (current) current->Add(std::move(found), std::move(result));
}

Place::Place(const char *what, int index) : Owner(current), What(what), Index(index)
{
    if (Owner) Outer = std::exchange(Owner->Innermost, this);
}

Place::~Place()
{
    if (Owner) Owner->Innermost = Outer;
}

} // namespace LoadReport
