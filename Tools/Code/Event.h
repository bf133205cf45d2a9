#pragma once

#include <utility>
#include <vector>

/// One handler of an event: an object and an operation of it, so that it can be found again for unsubscribing.
template <typename... Args>
struct Delegate
{
    void *object = nullptr;
    void (*call)(void *object, Args... args) = nullptr;

    template <auto Method, typename T>
    static Delegate To(T *target)
    {
        return {target,
                [](void *object, Args... args) { (static_cast<T *>(object)->*Method)(std::forward<Args>(args)...); }};
    }

    friend bool operator==(const Delegate &left, const Delegate &right)
    {
        return left.object == right.object && left.call == right.call;
    }
};

/// A subscribable event. Handlers run in the order of their subscription, on the thread that raises; a handler may
/// subscribe and unsubscribe while the event is raised, which counts from the next time on.
template <typename... Args>
class Event
{
public:
    using Handler = Delegate<Args...>;

    template <auto Method, typename T>
    void Subscribe(T *object)
    {
        Handlers.push_back(Handler::template To<Method>(object));
    }
    /// Removes the latest subscription of the operation; nothing when there is none.
    template <auto Method, typename T>
    void Unsubscribe(T *object)
    {
        const Handler handler = Handler::template To<Method>(object);
        for (auto position = Handlers.end(); position != Handlers.begin();) {
            if (!(*--position == handler)) continue;
            Handlers.erase(position);
            return;
        }
    }
    void Raise(Args... args) const
    {
        const std::vector<Handler> current = Handlers;
        for (const Handler &handler : current) handler.call(handler.object, args...);
    }

private:
    std::vector<Handler> Handlers;
};
