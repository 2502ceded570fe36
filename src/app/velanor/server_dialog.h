// Asks for a base on a server and connects to it.
#pragma once

#include <QDialog>
#include <functional>

#include "app/velanor/server_address.h"

class QComboBox;
class QFormLayout;
class QLabel;
class QLineEdit;
class QPushButton;

namespace velanor::app {

// Stays, with what was typed, until a connection stands or the user gives up.
class ServerDialog : public QDialog {
  Q_OBJECT

 public:
  // Opens what is named; the sentence of what failed, "" where nothing did.
  using Connect = std::function<QString(const ServerAddress&)>;

  ServerDialog(const ServerAddress& proposed, Connect connect, QWidget* parent = nullptr);

  // Shows it in the dialog; the focus goes to what it is most likely about.
  void show_failure(const QString& sentence);
  ServerAddress address() const;

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  QLineEdit* add_line(QFormLayout& form, const char* name, const QString& label, const QString& text);
  void connect_now();
  QLineEdit* first_empty() const;

  Connect connect_;
  QString more_;
  QLineEdit *host_, *port_, *base_, *user_, *password_;
  QComboBox* tls_;
  QLabel* failure_;
  QPushButton* button_;
};

}  // namespace velanor::app
