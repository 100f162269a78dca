#include "Project.h"

KORV_Clip::KORV_Clip(std::unique_ptr<Data> data) : m_data(std::move(data))
{
}

KORV_Clip::~KORV_Clip() = default;

unsigned int KORV_Clip::id() const
{
    return m_data->id;
}

QString const& KORV_Clip::name() const
{
    return m_data->model->name;
}

ZN_ClipInfo const& KORV_Clip::info() const
{
    return *m_data->info;
}
