#include "ColmapFrames.h"

#include <algorithm>
#include <map>

namespace MarloHost
{

namespace
{

using Image = ColmapModel::Image;

constexpr int MAX_FRAMES = 10'000'000;

/// 9999999, below the frame numbers that a project takes.
constexpr int MOST_DIGITS = 7;

bool isDigit(QChar c)
{
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

struct Digits
{
    int start;
    int length;
};

/// A name in its runs of digits.
struct Name
{
    explicit Name(QString const& name) : text(name), skeleton(name)
    {
        for (int i = 0; i < text.size();)
        {
            int const start = i;
            while (i < text.size() && isDigit(text[i]))
            {
                ++i;
            }
            if (i > start)
            {
                digits.push_back({start, i - start});
            }
            i = std::max(i, start + 1);
        }
        for (auto run = digits.rbegin(); run != digits.rend(); ++run)
        {
            skeleton.replace(run->start, run->length, QStringLiteral("0"));
        }
    }

    QStringRef digitsAt(std::size_t index) const
    {
        return text.midRef(digits[index].start, digits[index].length);
    }

    QString text;

    /// The name with each run of digits as one 0.
    QString skeleton;
    std::vector<Digits> digits;
};

/// The last run of digits of a file name, its extension aside, as in "clip2/shot_0012.mp4".
std::optional<std::size_t> lastOfFileName(Name const& name)
{
    int const file = name.text.lastIndexOf(QLatin1Char('/')) + 1;
    int const point = name.text.lastIndexOf(QLatin1Char('.'));
    int const end = point > file ? point : name.text.size();
    for (std::size_t i = name.digits.size(); i > 0 && name.digits[i - 1].start >= file; --i)
    {
        if (name.digits[i - 1].start < end)
        {
            return i - 1;
        }
    }
    return std::nullopt;
}

/// The last run of digits that isn't the same in all of these names, which have one skeleton.
std::optional<std::size_t> lastThatChanges(std::vector<Name const*> const& names)
{
    Name const& first = *names.front();
    for (std::size_t i = first.digits.size(); i > 0; --i)
    {
        auto const isSame = [&](Name const* name) { return name->digitsAt(i - 1) == first.digitsAt(i - 1); };
        if (!std::all_of(names.begin(), names.end(), isSame))
        {
            return i - 1;
        }
    }
    return std::nullopt;
}

/// Date and time of day, as telephones name pictures: 20240131_174500.
bool isTimeOfDay(Name const& name, std::size_t index)
{
    constexpr int DATE_DIGITS = 8;
    constexpr int TIME_DIGITS = 6;
    return index > 0 && name.digits[index].length == TIME_DIGITS && name.digits[index - 1].length == DATE_DIGITS;
}

struct Numbered
{
    std::size_t image = 0;
    int number = 0;

    /// Where the number stands in the name.
    Digits digits{};

    /// The name without the number.
    QString run;
};

/// The number of an image, if it can be one.
std::optional<Numbered> numberedBy(Name const& name, std::size_t image, std::optional<std::size_t> const& index)
{
    if (!index || name.digits[*index].length > MOST_DIGITS || isTimeOfDay(name, *index))
    {
        return std::nullopt;
    }
    Numbered numbered;
    numbered.image = image;
    numbered.digits = name.digits[*index];
    numbered.number = name.digitsAt(*index).toInt();
    numbered.run = name.text;
    numbered.run.replace(numbered.digits.start, numbered.digits.length, QStringLiteral("#"));
    return numbered;
}

/// The numbers of all images in the order of their names; empty when one has none.
std::vector<Numbered> numbersOf(std::vector<Name> const& names)
{
    std::map<QString, std::vector<Name const*>> bySkeleton;
    for (Name const& name : names)
    {
        bySkeleton[name.skeleton].push_back(&name);
    }
    std::map<QString, std::optional<std::size_t>> places;
    for (auto const& [skeleton, alike] : bySkeleton)
    {
        places[skeleton] = alike.size() > 1 ? lastThatChanges(alike) : lastOfFileName(*alike.front());
    }
    std::vector<Numbered> numbers;
    for (std::size_t i = 0; i < names.size(); ++i)
    {
        std::optional<Numbered> const numbered = numberedBy(names[i], i, places[names[i].skeleton]);
        if (!numbered)
        {
            return {};
        }
        numbers.push_back(*numbered);
    }
    return numbers;
}

bool ascend(std::vector<Numbered>::const_iterator begin, std::vector<Numbered>::const_iterator end)
{
    return std::adjacent_find(begin, end, [](Numbered const& a, Numbered const& b) { return a.number >= b.number; }) ==
           end;
}

/// Whether images may lie in so many frames: what names very few in very many isn't counting
/// frames, and would make a clip that costs a machine.
bool isPlausible(int frames, std::size_t images)
{
    constexpr int ALWAYS_FINE = 100'000;
    constexpr std::size_t MOST_TO_AN_IMAGE = 1000;
    return frames <= ALWAYS_FINE || static_cast<std::size_t>(frames) <= MOST_TO_AN_IMAGE * images;
}

/// Puts the images of a run one after another, runs in the order of their first images.
/// @return how many runs there are
int groupByRun(std::vector<Numbered>& numbers)
{
    std::map<QString, int> places;
    for (Numbered const& numbered : numbers)
    {
        places.emplace(numbered.run, static_cast<int>(places.size()));
    }
    std::stable_sort(numbers.begin(), numbers.end(),
                     [&](Numbered const& a, Numbered const& b) { return places[a.run] < places[b.run]; });
    return static_cast<int>(places.size());
}

/// Frames of grouped runs, each following on the one before; empty when numbers stand twice in a
/// run or there are too many frames.
std::vector<int> joinedFrames(std::vector<Numbered> const& numbers)
{
    std::vector<int> frames;
    int start = 0;
    for (auto run = numbers.begin(); run != numbers.end();)
    {
        auto const end = std::find_if(run, numbers.end(), [&](Numbered const& n) { return n.run != run->run; });
        int const length = (end - 1)->number - run->number + 1;
        if (!ascend(run, end) || length > MAX_FRAMES - start || !isPlausible(length, numbers.size()))
        {
            return {};
        }
        for (auto at = run; at != end; ++at)
        {
            frames.push_back(start + at->number - run->number);
        }
        start += length;
        run = end;
    }
    return frames;
}

/// The files of one run, when its number stands in the file name and is filled up with zeros to
/// the same width.
std::optional<FootageModel> footageOf(std::vector<Numbered> const& numbers, std::vector<Name> const& names)
{
    Name const& name = names[numbers.front().image];
    int const start = numbers.front().digits.start;
    int const width = numbers.front().digits.length;
    QString const suffix = name.text.mid(start + width);
    auto const isEven = [&](Numbered const& numbered)
    {
        bool const isFilled = numbered.digits.length > width && names[numbered.image].text[start] == QLatin1Char('0');
        return numbered.digits.length >= width && !isFilled;
    };
    if (suffix.contains(QLatin1Char('/')) || !std::all_of(numbers.begin(), numbers.end(), isEven))
    {
        return std::nullopt;
    }
    QString const prefix = name.text.left(start);
    int const slash = prefix.lastIndexOf(QLatin1Char('/'));
    FootageModel footage;
    footage.kind = FootageModel::Sequence;
    footage.directory = slash > 0 ? prefix.left(slash) : QStringLiteral(".");
    footage.prefix = prefix.mid(slash + 1);
    footage.suffix = suffix;
    footage.indexWidth = width;
    footage.firstIndex = numbers.front().number;
    return footage;
}

QString const& notASequence()
{
    static QString const text = QStringLiteral(
        "the numbers in the names of the images are written unevenly or stand in folders; the footage is a solid");
    return text;
}

void countImages(ColmapModel const& model, std::vector<Name> const& names, ColmapFrames& result)
{
    for (Image const& image : model.images)
    {
        result.shots.push_back({&image, static_cast<int>(result.shots.size())});
    }
    bool const haveDigits =
        std::any_of(names.begin(), names.end(), [](Name const& name) { return !name.digits.empty(); });
    if (haveDigits && names.size() > 1)
    {
        result.warnings += QStringLiteral("the names of the images don't tell which frames they are; frames count the "
                                          "images, also where the solve lost some in between");
    }
}

}

ColmapFrames framesOfColmap(ColmapModel const& model)
{
    std::vector<Name> names;
    names.reserve(model.images.size());
    for (Image const& image : model.images)
    {
        names.emplace_back(image.name);
    }
    ColmapFrames result;
    std::vector<Numbered> numbers = numbersOf(names);
    bool const areFrames = !numbers.empty() && ascend(numbers.begin(), numbers.end()) &&
                           isPlausible(numbers.back().number - numbers.front().number + 1, numbers.size());
    int const runs = areFrames ? 0 : groupByRun(numbers);
    std::vector<int> const joined = areFrames ? std::vector<int>() : joinedFrames(numbers);
    if (!areFrames && joined.empty())
    {
        countImages(model, names, result);
        return result;
    }
    result.numbering = areFrames ? ColmapProject::ByNumber : ColmapProject::ByRuns;
    result.firstNumber = numbers.front().number;
    for (std::size_t i = 0; i < numbers.size(); ++i)
    {
        int const frame = areFrames ? numbers[i].number - result.firstNumber : joined[i];
        result.shots.push_back({&model.images[numbers[i].image], frame});
    }
    bool const isOneRun =
        std::all_of(numbers.begin(), numbers.end(), [&](Numbered const& n) { return n.run == numbers.front().run; });
    if (isOneRun)
    {
        result.footage = footageOf(numbers, names);
        result.warnings += result.footage ? QStringList() : QStringList(notASequence());
    }
    if (!areFrames)
    {
        result.warnings += QStringLiteral("the images are %1 runs of numbers that start anew, from \"%2\" to \"%3\"; "
                                          "the frames of each follow on those of the one before")
                               .arg(runs)
                               .arg(numbers.front().run, numbers.back().run);
    }
    return result;
}

}
