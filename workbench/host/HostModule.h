#pragma once

#include "QVXLModuleInterface.h"

#include <memory>

class ModuleLink;

/// The stand-in host's module: carries requests to a link. Without a link every request fails and
/// sends nothing. GUI thread.
class HostModule : public QVXLModuleInterface
{
    Q_OBJECT

public:
    /// Registers the module under `key` unless that is empty. `link` is not owned and must outlive
    /// the module or be taken away with `setLink` first; null means not connected.
    HostModule(const QString &name, const QString &key, ModuleLink *link,
               QWidget *parent = nullptr);
    ~HostModule() override;

    /// The chip that serves a motor. One chip may serve several motors: what is written to it for
    /// one of them then holds for all. To be set before the first request. A chip lives as long as
    /// the module, also when another one takes its place: tools go on with the one they were given.
    void setProduct(unsigned char motor, std::shared_ptr<XmlProductIC> product);

    void setLink(ModuleLink *link);
    ModuleLink *link() const;

    /// True while a request runs as one of a repeated series.
    bool isCircularMode() const;

    /// The register value written last, or the reset value before the first write; sends nothing.
    /// 0 for a null register.
    int outputValue(XmlValueRegister *reg, unsigned char motor) const;
};
