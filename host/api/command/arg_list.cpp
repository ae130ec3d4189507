#include <maya/MArgList.h>
#include <maya/MDoubleArray.h>
#include <maya/MIntArray.h>
#include <maya/MPointArray.h>
#include <maya/MVectorArray.h>

#include "host/api/command/args.h"

namespace host::api {

MArgList wrap(std::vector<mel::Value> words) {
  auto* rep = new ArgListRep;
  rep->words = std::move(words);
  return Access::make<MArgList>(rep);
}

const std::vector<mel::Value>& wordsOf(const MArgList& list) {
  static const std::vector<mel::Value> empty;
  const auto* rep = Access::rep<ArgListRep>(list);
  return rep ? rep->words : empty;
}

namespace {

const mel::Value* wordAt(const MArgList& list, unsigned int index) {
  const auto& words = wordsOf(list);
  return index < words.size() ? &words[index] : nullptr;
}

bool isFlag(const mel::Value& word) {
  return word.isString() && word.string().size() > 1 && word.string()[0] == '-' &&
         (word.string()[1] < '0' || word.string()[1] > '9') && word.string()[1] != '.';
}

MStatus readReal(const MArgList& list, unsigned int index, double& value) {
  const mel::Value* word = wordAt(list, index);
  if (!word || isFlag(*word)) return MStatus::kInvalidParameter;
  const auto number = word->toFloat();
  if (number) value = *number;
  return toStatus(number, MStatus::kInvalidParameter);
}

/// `count` numbers from `index` on; moves `index` to the last one read.
MStatus readReals(const MArgList& list, unsigned int& index, unsigned int count, double* values) {
  const mel::Value* word = wordAt(list, index);
  if (word && word->type() == mel::Type::Vector && count <= 3) {
    const mel::Vec3& vector = word->vector();
    const double parts[] = {vector.x, vector.y, vector.z};
    for (unsigned int i = 0; i < count; ++i) values[i] = parts[i];
    return MStatus::kSuccess;
  }
  for (unsigned int i = 0; i < count; ++i) {
    const MStatus status = readReal(list, index + i, values[i]);
    if (!status) return status;
  }
  index += count > 0 ? count - 1 : 0;
  return MStatus::kSuccess;
}

/// The words from `index` up to the next flag, arrays spread out; `index` moves to the last word
/// taken.
template <class Take>
MStatus readRun(const MArgList& list, unsigned int& index, Take take) {
  unsigned int i = index;
  for (; i < wordsOf(list).size() && !isFlag(wordsOf(list)[i]); ++i) take(wordsOf(list)[i]);
  if (i == index) return MStatus::kInvalidParameter;
  index = i - 1;
  return MStatus::kSuccess;
}

template <class Array, class Element, class Read>
MStatus readTuples(const MArgList& list, unsigned int& index, unsigned int count, Array& array,
                   Read make) {
  if (count == 0 || count > 4) return MStatus::kInvalidParameter;
  std::vector<double> numbers;
  const MStatus status = readRun(list, index, [&](const mel::Value& word) {
    if (word.type() == mel::Type::VectorArray) {
      for (const mel::Vec3& v : word.vectorArray()) numbers.insert(numbers.end(), {v.x, v.y, v.z});
    } else if (word.type() == mel::Type::Vector) {
      numbers.insert(numbers.end(), {word.vector().x, word.vector().y, word.vector().z});
    } else {
      for (const std::string& text : word.toTexts()) numbers.push_back(mel::leadingFloat(text));
    }
  });
  if (!status) return status;
  if (numbers.size() % count != 0) return MStatus::kInvalidParameter;
  array.clear();
  for (std::size_t i = 0; i < numbers.size(); i += count) array.append(make(&numbers[i]));
  return MStatus::kSuccess;
}

MArgList& append(MArgList& list, mel::Value word) {
  Access::writable<ArgListRep>(list).words.push_back(std::move(word));
  return list;
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::append;
using api::setStatus;
using api::wordAt;
using api::wordsOf;

unsigned int MArgList::length(MStatus* status) const {
  setStatus(status, MStatus::kSuccess);
  return static_cast<unsigned int>(wordsOf(*this).size());
}

unsigned int MArgList::flagIndex(const char* shortFlag, const char* longFlag) const {
  const auto bare = [](const char* name) {
    const std::string_view text = name ? name : "";
    return !text.empty() && text.front() == '-' ? text.substr(1) : text;
  };
  const std::string_view shortName = bare(shortFlag), longName = bare(longFlag);
  for (unsigned int i = 0; i < length(); ++i) {
    const mel::Value& word = wordsOf(*this)[i];
    if (!api::isFlag(word)) continue;
    const std::string_view name = std::string_view(word.string()).substr(1);
    if (name == shortName || (!longName.empty() && name == longName)) return i;
  }
  return kInvalidArgIndex;
}
unsigned int MArgList::flagIndex(const MString& shortFlag, const MString& longFlag) const {
  return flagIndex(shortFlag.asChar(), longFlag.asChar());
}

MStatus MArgList::get(unsigned int index, bool& value) const {
  const mel::Value* word = wordAt(*this, index);
  if (!word) return MStatus::kInvalidParameter;
  const auto truth = word->toBool();
  if (truth) value = *truth;
  return api::toStatus(truth, MStatus::kInvalidParameter);
}
MStatus MArgList::get(unsigned int index, int& value) const {
  const mel::Value* word = wordAt(*this, index);
  if (!word) return MStatus::kInvalidParameter;
  const auto number = word->toInt();
  if (number) value = *number;
  return api::toStatus(number, MStatus::kInvalidParameter);
}
MStatus MArgList::get(unsigned int index, double& value) const {
  return api::readReal(*this, index, value);
}
MStatus MArgList::get(unsigned int index, MString& value) const {
  const mel::Value* word = wordAt(*this, index);
  if (!word) return MStatus::kInvalidParameter;
  const auto text = word->toText();
  if (text) value = api::toMString(*text);
  return api::toStatus(text, MStatus::kInvalidParameter);
}
MStatus MArgList::get(unsigned int index, MDistance& value) const {
  double number = 0;
  const MStatus status = api::readReal(*this, index, number);
  if (status)
    value = MDistance(api::document().units().toCentimeters(number), MDistance::kCentimeters);
  return status;
}
MStatus MArgList::get(unsigned int index, MAngle& value) const {
  double number = 0;
  const MStatus status = api::readReal(*this, index, number);
  if (status) value = MAngle(api::document().units().toRadians(number), MAngle::kRadians);
  return status;
}
MStatus MArgList::get(unsigned int index, MTime& value) const {
  double number = 0;
  const MStatus status = api::readReal(*this, index, number);
  if (status) value = MTime(number, MTime::uiUnit());
  return status;
}
MStatus MArgList::get(unsigned int& index, MPoint& value, unsigned int numElements) const {
  double parts[4] = {0, 0, 0, 1};
  if (numElements > 4) return MStatus::kInvalidParameter;
  const MStatus status = api::readReals(*this, index, numElements, parts);
  if (status) value = MPoint(parts[0], parts[1], parts[2], parts[3]);
  return status;
}
MStatus MArgList::get(unsigned int& index, MVector& value, unsigned int numElements) const {
  double parts[3] = {0, 0, 0};
  if (numElements > 3) return MStatus::kInvalidParameter;
  const MStatus status = api::readReals(*this, index, numElements, parts);
  if (status) value = MVector(parts[0], parts[1], parts[2]);
  return status;
}
MStatus MArgList::get(unsigned int& index, MIntArray& value) const {
  MIntArray read;
  const MStatus status = api::readRun(*this, index, [&read](const mel::Value& word) {
    for (const std::string& text : word.toTexts()) read.append(mel::leadingInt(text));
  });
  if (status) value = read;
  return status;
}
MStatus MArgList::get(unsigned int& index, MDoubleArray& value) const {
  MDoubleArray read;
  const MStatus status = api::readRun(*this, index, [&read](const mel::Value& word) {
    if (word.type() == mel::Type::FloatArray) {
      for (const double number : word.floatArray()) read.append(number);
    } else {
      for (const std::string& text : word.toTexts()) read.append(mel::leadingFloat(text));
    }
  });
  if (status) value = read;
  return status;
}
MStatus MArgList::get(unsigned int& index, MStringArray& value) const {
  MStringArray read;
  const MStatus status = api::readRun(*this, index, [&read](const mel::Value& word) {
    for (const std::string& text : word.toTexts()) read.append(api::toMString(text));
  });
  if (status) value = read;
  return status;
}
MStatus MArgList::get(unsigned int& index, MPointArray& value, unsigned int numElements) const {
  return api::readTuples<MPointArray, MPoint>(
      *this, index, numElements, value, [numElements](const double* p) {
        return MPoint(p[0], numElements > 1 ? p[1] : 0, numElements > 2 ? p[2] : 0,
                      numElements > 3 ? p[3] : 1);
      });
}
MStatus MArgList::get(unsigned int& index, MVectorArray& value, unsigned int numElements) const {
  if (numElements > 3) return MStatus::kInvalidParameter;
  return api::readTuples<MVectorArray, MVector>(
      *this, index, numElements, value, [numElements](const double* p) {
        return MVector(p[0], numElements > 1 ? p[1] : 0, numElements > 2 ? p[2] : 0);
      });
}

#define HOST_ARG_AS(Name, Type)                                        \
  Type MArgList::as##Name(unsigned int index, MStatus* status) const { \
    Type value{};                                                      \
    const MStatus code = get(index, value);                            \
    setStatus(status, code.statusCode());                              \
    return value;                                                      \
  }
HOST_ARG_AS(Bool, bool)
HOST_ARG_AS(Int, int)
HOST_ARG_AS(Double, double)
HOST_ARG_AS(String, MString)
HOST_ARG_AS(Distance, MDistance)
HOST_ARG_AS(Angle, MAngle)
HOST_ARG_AS(Time, MTime)
#undef HOST_ARG_AS
#define HOST_ARG_AS_RUN(Name, Type)                                     \
  Type MArgList::as##Name(unsigned int& index, MStatus* status) const { \
    Type value{};                                                       \
    const MStatus code = get(index, value);                             \
    setStatus(status, code.statusCode());                               \
    return value;                                                       \
  }
HOST_ARG_AS_RUN(IntArray, MIntArray)
HOST_ARG_AS_RUN(DoubleArray, MDoubleArray)
HOST_ARG_AS_RUN(StringArray, MStringArray)
#undef HOST_ARG_AS_RUN
#define HOST_ARG_AS_TUPLE(Name, Type)                                                             \
  Type MArgList::as##Name(unsigned int& index, unsigned int numElements, MStatus* status) const { \
    Type value{};                                                                                 \
    const MStatus code = get(index, value, numElements);                                          \
    setStatus(status, code.statusCode());                                                         \
    return value;                                                                                 \
  }
HOST_ARG_AS_TUPLE(Point, MPoint)
HOST_ARG_AS_TUPLE(Vector, MVector)
HOST_ARG_AS_TUPLE(PointArray, MPointArray)
HOST_ARG_AS_TUPLE(VectorArray, MVectorArray)
#undef HOST_ARG_AS_TUPLE

MStatus MArgList::addArg(bool arg) {
  append(*this, mel::Value(arg));
  return MStatus::kSuccess;
}
MStatus MArgList::addArg(int arg) {
  append(*this, mel::Value(arg));
  return MStatus::kSuccess;
}
MStatus MArgList::addArg(double arg) {
  append(*this, mel::Value(arg));
  return MStatus::kSuccess;
}
MStatus MArgList::addArg(const MString& arg) {
  append(*this, mel::Value(arg.asChar()));
  return MStatus::kSuccess;
}
MStatus MArgList::addArg(const MDistance& arg) {
  return addArg(api::document().units().fromCentimeters(arg.asCentimeters()));
}
MStatus MArgList::addArg(const MAngle& arg) {
  return addArg(api::document().units().fromRadians(arg.asRadians()));
}
MStatus MArgList::addArg(const MTime& arg) {
  return addArg(arg.as(MTime::kSeconds) * api::document().units().framesPerSecond());
}
MStatus MArgList::addArg(const MPoint& arg) {
  addArg(arg.x);
  addArg(arg.y);
  return addArg(arg.z);
}
MStatus MArgList::addArg(const MVector& arg) {
  addArg(arg.x);
  addArg(arg.y);
  return addArg(arg.z);
}
MStatus MArgList::addArg(const MIntArray& arg) {
  append(*this, mel::Value(mel::IntArray(arg.begin(), arg.end())));
  return MStatus::kSuccess;
}
MStatus MArgList::addArg(const MDoubleArray& arg) {
  append(*this, mel::Value(mel::FloatArray(arg.begin(), arg.end())));
  return MStatus::kSuccess;
}
MStatus MArgList::addArg(const MStringArray& arg) {
  mel::StringArray texts;
  for (unsigned int i = 0; i < arg.length(); ++i) texts.emplace_back(arg[i].asChar());
  append(*this, mel::Value(std::move(texts)));
  return MStatus::kSuccess;
}
MStatus MArgList::addArg(const MPointArray& arg) {
  mel::VectorArray points;
  for (unsigned int i = 0; i < arg.length(); ++i) points.push_back({arg[i].x, arg[i].y, arg[i].z});
  append(*this, mel::Value(std::move(points)));
  return MStatus::kSuccess;
}
MStatus MArgList::addArg(const MVectorArray& arg) {
  mel::VectorArray vectors;
  for (unsigned int i = 0; i < arg.length(); ++i) vectors.push_back({arg[i].x, arg[i].y, arg[i].z});
  append(*this, mel::Value(std::move(vectors)));
  return MStatus::kSuccess;
}
