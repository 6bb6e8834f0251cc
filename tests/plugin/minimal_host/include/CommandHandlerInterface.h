#pragma once

class CommandHandlerInterface
{
public:
    void setCircularMode(bool on);
    bool isCircular() const { return m_circular; }

private:
    bool m_circular = false;
};
