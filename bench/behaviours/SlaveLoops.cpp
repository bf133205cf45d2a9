#include "ParentLayer.h"
#include "PlainLoops.h"

#include <cstring>

using namespace Behaviour;

namespace
{

template <typename... Channels>
Case::PlainLoop Copy(Channels... channels)
{
    return [=](const PlainParticles &p, const vrMKPRenderState &) {
        static std::vector<uint32_t> source;
        source.resize(static_cast<size_t>(p.Count));
        const auto copy = [&](auto *to) { std::memcpy(source.data(), to, source.size() * sizeof(uint32_t)); };
        (copy(p.*channels), ...);
    };
}

} // namespace

void Behaviour::Add_Slaves(CaseList &cases)
{
    const auto slave = [&cases](int id) -> Case & {
        Case &one = cases.Modifier(id).Set("Parent Name", "parent");
        one.Start = [follow = std::move(one.Start)](Stage &stage) {
            ParentLayer::Follow(stage, stage.Buffer->ActiveCount);
            follow(stage);
        };
        return one;
    };
    slave(96).Beside(Copy(&PlainParticles::Rotation));
    slave(97).Beside(Copy(&PlainParticles::Width, &PlainParticles::Height));
    slave(98).Beside(Copy(&PlainParticles::Color));
    slave(99).Beside(Copy(&PlainParticles::U, &PlainParticles::V, &PlainParticles::DU, &PlainParticles::DV));
}
