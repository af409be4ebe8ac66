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

// A slot for connect() that runs through runGuarded. It takes the signal's
// arguments when the slot wants them, and none when it wants none.
template <class Slot>
auto guarded(Slot slot)
{
    return [slot = std::move(slot)](auto &&...args) mutable {
        runGuarded([&] {
            if constexpr (std::is_invocable_v<Slot &, decltype(args)...>)
                std::invoke(slot, std::forward<decltype(args)>(args)...);
            else
                std::invoke(slot);
        });
    };
}

// The same for a member function of an object: guarded(this, &Dialog::cmdSave).
template <class Object, class Member>
auto guarded(Object *object, Member member)
{
    return guarded([object, member](auto &&...args) {
        if constexpr (std::is_invocable_v<Member, Object *, decltype(args)...>)
            std::invoke(member, object, std::forward<decltype(args)>(args)...);
        else
            std::invoke(member, object);
    });
}

} // namespace fenlark
