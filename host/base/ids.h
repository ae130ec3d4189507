#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <ranges>
#include <span>
#include <type_traits>
#include <utility>
#include <vector>

namespace host {

/// A count, or an index whose kind is not known here. Plain integers, so that whole arrays of them
/// pass to the API's integer arrays without conversion.
using Index = std::int32_t;

template <class Kind>
class Id;

/// "There is none", of every kind: -1.
struct NoId {
  constexpr operator Index() const { return -1; }  // NOLINT(google-explicit-constructor)
};
inline constexpr NoId kNone;

/// A component's index as the host numbers it, 0-based; -1 is "none". Converts from and to plain
/// integers, since numbers come in and go out as such, and never to an id of another kind: a vertex
/// does not pass for a face. As large as an `Index` and laid out like one.
template <class Kind>
class Id {
 public:
  constexpr Id() = default;                        ///< 0 where values are initialised
  constexpr Id(Index number) : number_(number) {}  // NOLINT(google-explicit-constructor)
  constexpr Id(NoId none) : number_(none) {}       // NOLINT(google-explicit-constructor)
  template <class Other>
  Id(Id<Other>) = delete;

  constexpr operator Index() const { return number_; }  // NOLINT(google-explicit-constructor)

  constexpr Id& operator++() {
    ++number_;
    return *this;
  }
  constexpr Id operator++(int) { return number_++; }
  constexpr Id& operator--() {
    --number_;
    return *this;
  }
  constexpr Id operator--(int) { return number_--; }
  constexpr Id& operator+=(Index n) {
    number_ += n;
    return *this;
  }
  constexpr Id& operator-=(Index n) {
    number_ -= n;
    return *this;
  }
  /// An id some places on or back is one of its kind; between two of a kind lies a plain number.
  [[nodiscard]] friend constexpr Id operator+(Id id, Index n) { return id.number_ + n; }
  [[nodiscard]] friend constexpr Id operator-(Id id, Index n) { return id.number_ - n; }
  [[nodiscard]] friend constexpr Index operator-(Id a, Id b) { return a.number_ - b.number_; }
  [[nodiscard]] friend constexpr Index operator-(Index a, Id b) { return a - b.number_; }

 private:
  Index number_;
};

namespace detail {
template <class T>
inline constexpr bool kIsId = false;
template <class Kind>
inline constexpr bool kIsId<Id<Kind>> = true;
}  // namespace detail
/// An id of any kind, or a plain number that stands for one.
template <class T>
concept AnyId = detail::kIsId<T> || std::is_same_v<T, Index>;

template <class A, class B>
bool operator==(Id<A>, Id<B>) requires(!std::is_same_v<A, B>) = delete;
template <class A, class B>
std::strong_ordering operator<=>(Id<A>, Id<B>) requires(!std::is_same_v<A, B>) = delete;

using VertexId = Id<struct VertexKind>;
using EdgeId = Id<struct EdgeKind>;
using FaceId = Id<struct FaceKind>;
using CornerId = Id<struct CornerKind>;  ///< position in the mesh's face-corner arrays
using UvId = Id<struct UvKind>;

/// Ids of any kind seen as the plain numbers they are: what functions take that work on components
/// of every kind, and the API's integer arrays. The list must outlive it.
class IdView : public std::span<const Index> {
 public:
  constexpr IdView() = default;
  template <std::ranges::contiguous_range List>
  requires AnyId<std::ranges::range_value_t<List>> IdView(
      const List& list)  // NOLINT(google-explicit-constructor)
      : span(reinterpret_cast<const Index*>(std::ranges::data(list)), std::ranges::size(list)) {}
};
/// Plain numbers, or ids of any kind, taken for ids of one kind. The list must outlive the view.
template <AnyId To>
[[nodiscard]] std::span<const To> viewIds(IdView list) {
  static_assert(sizeof(To) == sizeof(Index) && alignof(To) == alignof(Index));
  return {reinterpret_cast<const To*>(list.data()), list.size()};
}
/// A copy of a list of ids as a list of another type of the same numbers.
template <AnyId To = Index>
[[nodiscard]] std::vector<To> copyIds(IdView list) {
  return {list.begin(), list.end()};
}

/// An id, an index or a count as arrays take it.
template <AnyId Number>
[[nodiscard]] constexpr std::size_t at(Number number) {
  return static_cast<std::size_t>(static_cast<Index>(number));
}

/// One value for each component of a kind, taken by the component's id. The id of another kind does
/// not compile; plain numbers do.
template <AnyId ElementId, class T>
class PerElement : public std::vector<T> {
 public:
  using Values = std::vector<T>;
  using Values::Values;
  using Values::operator[];
  PerElement() = default;
  PerElement(Values values)  // NOLINT(google-explicit-constructor): a list is one value each
      : Values(std::move(values)) {}
  explicit PerElement(Index count, const T& value = T()) : Values(at(count), value) {}

  [[nodiscard]] T& operator[](ElementId id) { return Values::operator[](at(id)); }
  [[nodiscard]] const T& operator[](ElementId id) const { return Values::operator[](at(id)); }
  template <class Other>
  requires(!std::is_same_v<Id<Other>, ElementId>) T& operator[](Id<Other> id) const = delete;
};

}  // namespace host

template <class Kind>
struct std::hash<host::Id<Kind>> {
  std::size_t operator()(host::Id<Kind> id) const noexcept { return std::hash<host::Index>()(id); }
};
