#pragma once

#include <functional>
#include <type_traits>
#include <utility>

namespace fenlark {

// The desk's one answer to a failure nobody planned for. Everything Qt calls in
// our code (a click, a menu entry, a timer, the tick) runs through here: an
// exception (a database error, rate data that cannot be priced, anything else)
// is written to fenlark.log and shown as a critical message. The transaction it
// interrupted has already rolled back on its way out, the screen stays open, and
// the exception never unwinds through Qt's own code. The desk never ends on an error.
void runGuarded(const std::function<void()> &action);

// How many failures the guard has caught in this process (for tests).
int guardedFailures();

namespace detail {

// Calls slot with the signal's arguments when it takes them, else with none.
template <class Slot, class... Args>
void callSlot(Slot &slot, Args &&...args)
{
    if constexpr (std::is_invocable_v<Slot &, Args...>)
        std::invoke(slot, std::forward<Args>(args)...);
    else
        std::invoke(slot);
}

} // namespace detail

// A slot for connect() that runs through runGuarded. It takes the signal's
// arguments when the slot wants them, and none when it wants none. The
// constraint lets connect() probe which arguments it takes without compiling
// a call that cannot be made.
template <class Slot>
auto guarded(Slot slot)
{
    return [slot = std::move(slot)](auto &&...args) mutable
               requires std::is_invocable_v<Slot &, decltype(args)...> || std::is_invocable_v<Slot &>
    {
        runGuarded([&] { detail::callSlot(slot, std::forward<decltype(args)>(args)...); });
    };
}

// The same for a member function of an object: guarded(this, &Dialog::cmdSave).
template <class Object, class Member>
auto guarded(Object *object, Member member)
{
    return guarded(std::bind_front(member, object));
}

} // namespace fenlark
