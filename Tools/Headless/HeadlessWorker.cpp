#include "Headless/HeadlessWorker.h"

HeadlessWorker::~HeadlessWorker()
{
    Join();
    queue.Remove(this); // what is left of the reports has nobody to go to
}

void HeadlessWorker::Post(std::function<void()> report)
{
    queue.Post(this, std::move(report));
}
