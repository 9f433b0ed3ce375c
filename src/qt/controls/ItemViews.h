#pragma once

#include <QStyleOptionViewItem>

namespace zelvanor {

// A list or tree without the keys is still of the window at work: some styles grey the words of what is not.
template <class View>
class AtWork : public View {
 public:
  using View::View;

 protected:
  void initViewItemOption(QStyleOptionViewItem* Option) const override {
    View::initViewItemOption(Option);
    Option->state.setFlag(QStyle::State_Active, this->isActiveWindow());
  }
};

}  // namespace zelvanor
