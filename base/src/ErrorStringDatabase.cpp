// The database of error texts and the tables of the base layer. Both stand in one source file: whoever looks a text
// up has linked the tables as well.
#include "ErrorStringDatabase.h"

namespace tkErrors {

CErrorStringDatabase::~CErrorStringDatabase() = default;

const char *CErrorStringDatabase::Lookup(std::uint32_t code) const {
    const std::uint32_t key = ErrorKey(code);
    const Texts::value_type *last = lastFound_.load(std::memory_order_acquire);
    if (last == nullptr && key == 0)
        return nullptr; // Required: until another text was found, the key 0 has none.
    if (last != nullptr && last->first == key)
        return last->second.c_str();
    const auto found = texts_.find(key);
    if (found == texts_.end())
        return nullptr;
    lastFound_.store(&*found, std::memory_order_release);
    return found->second.c_str();
}

bool CErrorStringDatabase::Register(std::int16_t number, std::uint32_t subFacility, std::uint32_t facility,
                                    const char *text, bool replace) {
    return Register(MakeErrorKey(number, subFacility, facility), text, replace);
}

bool CErrorStringDatabase::Register(std::uint32_t word, const char *text, bool replace) {
    if (text == nullptr)
        return false;
    const auto [entry, isNew] = texts_.try_emplace(ErrorKey(word), text);
    if (!isNew && !replace)
        return false;
    if (!isNew)
        entry->second = text;
    return true;
}

CErrorStringDatabase &CErrorStringDatabase::Instance() {
    static CErrorStringDatabase database;
    return database;
}

CErrorStringRegistrator::CErrorStringRegistrator(std::uint32_t subFacility, std::uint32_t facility, const Row *table)
    : subFacility_(subFacility), facility_(facility), table_(table) {
    RegisterRows();
}

CErrorStringRegistrator::~CErrorStringRegistrator() = default;

void CErrorStringRegistrator::RegisterRows() const {
    auto &database = CErrorStringDatabase::Instance();
    for (int i = 0; i < MostRows && table_[i].Number != EndOfTable && table_[i].Text != nullptr; ++i)
        database.Register(static_cast<std::int16_t>(table_[i].Number), subFacility_, facility_, table_[i].Text,
                          false);
}

namespace {

using Row = CErrorStringRegistrator::Row;

constexpr Row TableEnd{CErrorStringRegistrator::EndOfTable, nullptr};
constexpr Row NoInformation{0, "No extended error information available"};

constexpr Row GeneralTexts[] = {
    NoInformation,
    {1, "Operation failed because the requested amount of memory was not available"},
    {2, "The specified Index is out of the permissible range"},
    {4, "One or more given argument was invalid"},
    {3, "The attempted operation is not currently allowed on the object on which it was attempted"},
    {5, "An object does not have the expected type"},
    {6, "Operation failed because the maximal wait time expired"},
    {7, "Operation failed because it was externally canceled"},
    {8, "Unspecified error"},
    TableEnd,
};

constexpr Row MathTexts[] = {
    NoInformation,
    {1, "Negative Dimensions and Dimension zero are illegal"},
    {2, "Dimension too big"},
    {3, "Dimensions of two or more operands did not match in an operation where they would have needed to"},
    {4, "The given dimension is not valid"},
    {5, "A division by zero was attempted"},
    {6, "The Matrix provided for the last operation has an invalid geometry"},
    {7, "The requested operation is not permitted on a vector that has length zero"},
    {8, "The calculation of the intersection failed because no intersection is available"},
    TableEnd,
};

constexpr Row ContainerTexts[] = {
    NoInformation,
    {1, "The container element to be accessed could not be found"},
    {2, "The container element could not be accessed"},
    TableEnd,
};

constexpr Row StreamTexts[] = {
    NoInformation,
    {1, "Read operation beyond the end of a stream was attempted"},
    {2, "Unable to open the stream"},
    TableEnd,
};

constexpr Row NoTexts[] = {NoInformation, TableEnd};

constexpr std::uint32_t BaseFacility = 1;

const CErrorStringRegistrator RegisterGeneral(0, BaseFacility, GeneralTexts);
const CErrorStringRegistrator RegisterMath(1, BaseFacility, MathTexts);
const CErrorStringRegistrator RegisterSecond(2, BaseFacility, NoTexts);
const CErrorStringRegistrator RegisterThird(3, BaseFacility, NoTexts);
const CErrorStringRegistrator RegisterContainer(4, BaseFacility, ContainerTexts);
const CErrorStringRegistrator RegisterStream(5, BaseFacility, StreamTexts);
const CErrorStringRegistrator RegisterSixth(6, BaseFacility, NoTexts);

} // namespace

} // namespace tkErrors
