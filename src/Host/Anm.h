#pragma once
// Time, views and contexts: the small values that say *when* and *for which
// eye* something is asked of the host. See docs/project-file.md for how host
// frames relate to the numbers that a user sees.

#include "Host/HostApi.h"

#include <QString>
#include <QStringList>

#include <memory>

namespace Anm
{

/// A whole frame number of the host. In interlaced material it counts fields.
class MARLO_HOST_API Frame
{
public:
    static Frame fromInt(int frame);
    static Frame fromUInt(unsigned int frame);

    int value() const;

    bool operator<(Frame const& other) const;
    bool operator==(Frame const& other) const;

private:
    explicit Frame(int frame);
    int m_frame;
};

/// A moment in host frames; fractions are allowed. The default is invalid.
class MARLO_HOST_API Time
{
public:
    Time();
    static Time fromInt(int frame);
    static Time fromUInt(unsigned int frame);
    static Time fromDouble(double frame);

    bool isValid() const;

    /// Host frames as a double; meaningless when not isValid().
    double value() const;

    bool operator<(Time const& other) const;
    bool operator==(Time const& other) const;

private:
    explicit Time(double frame);
    double m_frame;
};

/// One eye of a project, a small id. A mono project has the default view only;
/// the names belong to Views.
class MARLO_HOST_API View
{
public:
    /// Whether a clip is asked for the files of just this view, or for those that
    /// stand in for it where the view has none of its own.
    enum Mapping
    {
        Exact = 0,
        Mapped = 1
    };

    explicit View(int id);

    static int defaultViewId();
    static View defaultView();
    static View INVALID();

    int id() const;

    /// The id as decimal text.
    QString toString() const;

    bool operator<(View const& other) const;
    bool operator==(View const& other) const;
    bool operator!=(View const& other) const;

private:
    int m_id;
};

/// The views of a project in their order, each with a name. Ids count from the
/// default view id.
class MARLO_HOST_API Views
{
public:
    explicit Views(QStringList const& names);
    ~Views();

    unsigned int viewCount() const;

    /// Position of the view, or -1 for a view that the project doesn't have.
    int viewIndex(View const& view) const;

    View view(unsigned int index) const;
    QString name(View const& view) const;

    /// The view of that name; View::INVALID() when there is none.
    View viewForName(QString const& name) const;

private:
    QStringList m_names;
};

/// How far images are scaled down while the host works on them.
class MARLO_HOST_API ProxyScale
{
public:
    enum Enum
    {
        Eighth = 0,
        Quarter = 1,
        Half = 2,
        Full = 3
    };

    ProxyScale(Enum scale = Full);

    Enum value() const;
    bool operator==(ProxyScale const& other) const;
    bool operator<(ProxyScale const& other) const;

private:
    Enum m_scale;
};

/// Time, view and proxy scale together; ordered and compared in that order.
class MARLO_HOST_API BaseContext
{
public:
    BaseContext(Time const& time, View const& view, ProxyScale const& scale);

    /// The frame that the time lies in (rounded down).
    Frame frame() const;
    int frameValue() const;

    Time const& time() const;
    View const& view() const;
    ProxyScale const& proxyScale() const;

    void setTime(Time const& time);

    bool operator<(BaseContext const& other) const;
    bool operator==(BaseContext const& other) const;

private:
    Time m_time;
    View m_view;
    ProxyScale m_scale;
};

/// The time that many host frames ahead of the context.
MARLO_HOST_API Time operator-(BaseContext const& context, int frames);

class MARLO_HOST_API Context : public BaseContext
{
public:
    /// A context whose time is a resolved frame: no fraction, valid.
    class Explicit;

    Context(Time const& time, View const& view, ProxyScale const& scale = ProxyScale::Full);

    /// The context with an invalid time, in the default view.
    static Context invalid();
};

class MARLO_HOST_API Context::Explicit : public BaseContext
{
public:
    /// Cuts the fraction of the time off; an invalid time becomes frame 0.
    explicit Explicit(BaseContext const& context);
};

/// From one context to another of the same view, both included. Empty when the last comes
/// before the first, or when a time is invalid.
class MARLO_HOST_API ContextRange
{
public:
    /// An empty range.
    ContextRange();
    ContextRange(Context const& first, Context const& last);

    bool isEmpty() const;
    Context const& first() const;
    Context const& last() const;

    /// The least range that holds both; an empty one adds nothing.
    ContextRange united(ContextRange const& other) const;

private:
    Context m_first;
    Context m_last;
};

}
