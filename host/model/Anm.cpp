#include "Host/Anm.h"

#include <cmath>
#include <limits>
#include <tuple>

namespace Anm
{

namespace
{

// A number, not a NaN: two invalid times must compare equal.
constexpr double INVALID_TIME = std::numeric_limits<double>::lowest();

}

Frame::Frame(int frame) : m_frame(frame)
{
}

Frame Frame::fromInt(int frame)
{
    return Frame(frame);
}

Frame Frame::fromUInt(unsigned int frame)
{
    return Frame(static_cast<int>(frame));
}

int Frame::value() const
{
    return m_frame;
}

bool Frame::operator<(Frame const& other) const
{
    return m_frame < other.m_frame;
}

bool Frame::operator==(Frame const& other) const
{
    return m_frame == other.m_frame;
}

Time::Time() : m_frame(INVALID_TIME)
{
}

Time::Time(double frame) : m_frame(frame)
{
}

Time Time::fromInt(int frame)
{
    return Time(frame);
}

Time Time::fromUInt(unsigned int frame)
{
    return Time(frame);
}

Time Time::fromDouble(double frame)
{
    return Time(frame);
}

bool Time::isValid() const
{
    return m_frame != INVALID_TIME && std::isfinite(m_frame);
}

double Time::value() const
{
    return m_frame;
}

bool Time::operator<(Time const& other) const
{
    return m_frame < other.m_frame;
}

bool Time::operator==(Time const& other) const
{
    return m_frame == other.m_frame;
}

View::View(int id) : m_id(id)
{
}

int View::defaultViewId()
{
    return 0;
}

View View::defaultView()
{
    return View(defaultViewId());
}

View View::INVALID()
{
    return View(-1);
}

int View::id() const
{
    return m_id;
}

QString View::toString() const
{
    return QString::number(m_id);
}

bool View::operator<(View const& other) const
{
    return m_id < other.m_id;
}

bool View::operator==(View const& other) const
{
    return m_id == other.m_id;
}

bool View::operator!=(View const& other) const
{
    return m_id != other.m_id;
}

Views::Views(QStringList const& names) : m_names(names)
{
}

Views::~Views() = default;

unsigned int Views::viewCount() const
{
    return static_cast<unsigned int>(m_names.size());
}

int Views::viewIndex(View const& view) const
{
    int const index = view.id() - View::defaultViewId();
    return index >= 0 && index < m_names.size() ? index : -1;
}

View Views::view(unsigned int index) const
{
    return index < viewCount() ? View(View::defaultViewId() + static_cast<int>(index)) : View::INVALID();
}

QString Views::name(View const& view) const
{
    int const index = viewIndex(view);
    return index < 0 ? QString() : m_names[index];
}

View Views::viewForName(QString const& name) const
{
    int const index = m_names.indexOf(name);
    return index < 0 ? View::INVALID() : view(static_cast<unsigned int>(index));
}

ProxyScale::ProxyScale(Enum scale) : m_scale(scale)
{
}

ProxyScale::Enum ProxyScale::value() const
{
    return m_scale;
}

bool ProxyScale::operator==(ProxyScale const& other) const
{
    return m_scale == other.m_scale;
}

bool ProxyScale::operator<(ProxyScale const& other) const
{
    return m_scale < other.m_scale;
}

BaseContext::BaseContext(Time const& time, View const& view, ProxyScale const& scale)
    : m_time(time), m_view(view), m_scale(scale)
{
}

Frame BaseContext::frame() const
{
    double const whole = std::floor(m_time.value());
    if (!m_time.isValid() || whole < std::numeric_limits<int>::min())
    {
        return Frame::fromInt(std::numeric_limits<int>::min());
    }
    if (whole > std::numeric_limits<int>::max())
    {
        return Frame::fromInt(std::numeric_limits<int>::max());
    }
    return Frame::fromInt(static_cast<int>(whole));
}

int BaseContext::frameValue() const
{
    return frame().value();
}

Time const& BaseContext::time() const
{
    return m_time;
}

View const& BaseContext::view() const
{
    return m_view;
}

ProxyScale const& BaseContext::proxyScale() const
{
    return m_scale;
}

void BaseContext::setTime(Time const& time)
{
    m_time = time;
}

bool BaseContext::operator<(BaseContext const& other) const
{
    return std::tie(m_time, m_view, m_scale) < std::tie(other.m_time, other.m_view, other.m_scale);
}

bool BaseContext::operator==(BaseContext const& other) const
{
    return m_time == other.m_time && m_view == other.m_view && m_scale == other.m_scale;
}

Time operator-(BaseContext const& context, int frames)
{
    return Time::fromDouble(context.time().value() - frames);
}

Context::Context(Time const& time, View const& view, ProxyScale const& scale) : BaseContext(time, view, scale)
{
}

Context Context::invalid()
{
    return Context(Time(), View::defaultView());
}

Context::Explicit::Explicit(BaseContext const& context)
    : BaseContext(context.time().isValid() ? Time::fromInt(context.frameValue()) : Time::fromInt(0), context.view(),
                  context.proxyScale())
{
}

ContextRange::ContextRange() : ContextRange(Context::invalid(), Context::invalid())
{
}

ContextRange::ContextRange(Context const& first, Context const& last) : m_first(first), m_last(last)
{
}

bool ContextRange::isEmpty() const
{
    return !m_first.time().isValid() || !m_last.time().isValid() || m_last.time() < m_first.time();
}

Context const& ContextRange::first() const
{
    return m_first;
}

Context const& ContextRange::last() const
{
    return m_last;
}

ContextRange ContextRange::united(ContextRange const& other) const
{
    if (isEmpty() || other.isEmpty())
    {
        return isEmpty() ? other : *this;
    }
    return ContextRange(other.m_first.time() < m_first.time() ? other.m_first : m_first,
                        m_last.time() < other.m_last.time() ? other.m_last : m_last);
}

}
