#pragma once

#include <QtTest/QtTest>

#include <cstddef>
#include <type_traits>
#include <utility>

// What the tests of the exported interface ask of a class.

// Takes the address of what the library exports, so that the test cannot be linked without it.
template <typename Pointer> bool isThere(Pointer pointer)
{
    const volatile Pointer address = pointer; // read, or an optimiser leaves it out
    return address != nullptr;
}

template <typename Type> void take(const Type &);

// Whether \a Type can be made from \a Arguments without being named.
template <typename Type, typename... Arguments>
constexpr auto isImplicit(int) -> decltype(void(take<Type>({std::declval<Arguments>()...})), true)
{
    return true;
}

template <typename Type, typename... Arguments> constexpr bool isImplicit(...)
{
    return false;
}

// Whether `Type{}` compiles: a deleted constructor alone does not forbid it for an aggregate.
template <typename Type, typename = void> constexpr bool hasEmptyBraces = false;
template <typename Type> constexpr bool hasEmptyBraces<Type, decltype(void(Type{}))> = true;

template <typename Type>
constexpr bool isNeitherCopiedNorMoved
    = !std::is_copy_constructible_v<
          Type> && !std::is_copy_assignable_v<Type> && !std::is_move_constructible_v<Type> && !std::is_move_assignable_v<Type>;

template <std::size_t first, std::size_t... others> constexpr bool areGrowing()
{
    std::size_t last = first;
    bool growing = first == 0;
    ((growing = growing && others > last, last = others), ...);
    return growing;
}

// The offsets of all members of a class, in this order.
template <std::size_t... offsets> struct InOrder
{
    static_assert(areGrowing<offsets...>());
};

template <int line, typename Actual, typename Expected> struct PinnedMember
{
    static_assert(std::is_same_v<Actual, Expected>);
};

// A member or function of one exact type, and one of several overloads.
#define EXPORTED(name, ...)                                                                        \
    static_assert(std::is_same_v<decltype(&name), __VA_ARGS__>, #name);                            \
    QVERIFY(isThere<__VA_ARGS__>(&name))
#define EXPORTED_OVERLOAD(name, ...) QVERIFY(isThere<__VA_ARGS__>(&name))

// Whether \a expression, with \a object of the type \a Type, is something a client may write.
#define CLIENT_MAY_WRITE(Type, expression)                                                         \
    ([](auto isClient) {                                                                           \
        const auto use = [](auto &object) -> decltype(void(object), void(expression)) {};          \
        Q_UNUSED(isClient)                                                                         \
        return std::is_invocable_v<decltype(use), Type &>;                                         \
    }(0))

// A member that clients may not use has exactly this type. Stands outside of functions: only there
// may a private member be named.
#define PRIVATE_MEMBER(name, ...)                                                                  \
    template struct PinnedMember<__LINE__, decltype(&name), __VA_ARGS__>
#define PRIVATE_OVERLOAD(name, ...)                                                                \
    template struct PinnedMember<__LINE__, decltype(static_cast<__VA_ARGS__>(&name)), __VA_ARGS__>
