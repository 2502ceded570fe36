#include "app/velanor/server_dialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGuiApplication>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScopeGuard>
#include <QShowEvent>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

namespace velanor::app {
namespace {

constexpr int kLastPort = 65535, kWidth = 480;

struct Mode {
  const char *name, *text;
};
// The first is proposed: without it a machine that passes for the server would be told the password.
constexpr Mode kModes[] = {
    {"verify-full", "Chiffrée, serveur vérifié par son certificat"},
    {"require", "Chiffrée, sans vérifier le serveur"},
    {"prefer", "Chiffrée si le serveur le veut bien"},
    {"disable", "En clair (réseau de confiance)"},
};

}  // namespace

ServerDialog::ServerDialog(const ServerAddress& proposed, Connect connect, QWidget* parent)
    : QDialog(parent), connect_(std::move(connect)), more_(proposed.more) {
  setWindowTitle("Se connecter à un serveur");
  auto* form = new QFormLayout;
  host_ = add_line(*form, "host", "&Serveur", proposed.host);
  host_->setPlaceholderText("nom ou adresse");
  port_ = add_line(*form, "port", "&Port", proposed.port);
  port_->setPlaceholderText("5432");
  port_->setValidator(new QIntValidator(1, kLastPort, port_));
  base_ = add_line(*form, "base", "&Base", proposed.base);
  user_ = add_line(*form, "user", "&Utilisateur", proposed.user);
  password_ = add_line(*form, "password", "&Mot de passe", proposed.password);
  password_->setEchoMode(QLineEdit::Password);
  password_->setToolTip(
      "Il n'est gardé nulle part : vide, il est pris où les outils du serveur le prennent.");
  tls_ = new QComboBox;
  tls_->setObjectName("tls");
  for (const Mode& mode : kModes) tls_->addItem(mode.text, QString(mode.name));
  tls_->setCurrentIndex(std::max(0, tls_->findData(proposed.tls)));
  form->addRow("&Liaison", tls_);

  failure_ = new QLabel;
  failure_->setObjectName("failure");
  failure_->setTextFormat(Qt::PlainText);
  failure_->setWordWrap(true);
  failure_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  failure_->hide();

  auto* buttons = new QDialogButtonBox;
  button_ = buttons->addButton("Se &connecter", QDialogButtonBox::AcceptRole);
  button_->setObjectName("connect");
  button_->setDefault(true);
  buttons->addButton("&Annuler", QDialogButtonBox::RejectRole);
  QObject::connect(buttons, &QDialogButtonBox::accepted, this, &ServerDialog::connect_now);
  QObject::connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

  auto* column = new QVBoxLayout(this);
  column->addLayout(form);
  column->addWidget(failure_);
  column->addWidget(buttons);
  setMinimumWidth(kWidth);
}

QLineEdit* ServerDialog::add_line(QFormLayout& form, const char* name, const QString& label,
                                  const QString& text) {
  auto* line = new QLineEdit(text);
  line->setObjectName(name);
  form.addRow(label, line);
  return line;
}

ServerAddress ServerDialog::address() const {
  return {host_->text().trimmed(),
          port_->text().trimmed(),
          base_->text().trimmed(),
          user_->text().trimmed(),
          password_->text(),
          tls_->currentData().toString(),
          more_};
}

QLineEdit* ServerDialog::first_empty() const {
  for (QLineEdit* line : {host_, base_, user_, password_}) {
    if (line->text().isEmpty()) return line;
  }
  return nullptr;
}

// Who comes back has only the password to type.
void ServerDialog::showEvent(QShowEvent* event) {
  QDialog::showEvent(event);
  if (event->spontaneous()) return;
  QLineEdit* line = first_empty();
  (line ? line : host_)->setFocus();
}

void ServerDialog::show_failure(const QString& sentence) {
  failure_->setText(sentence);
  failure_->setVisible(!sentence.isEmpty());
  failure_->setAccessibleName(sentence);
  adjustSize();
  QLineEdit* empty = first_empty();
  QLineEdit* line = sentence.contains("mot de passe") ? password_
                    : empty && empty != password_     ? empty
                                                      : host_;
  line->setFocus();
  line->selectAll();
}

// It takes some seconds at most where nobody answers; the fields are out of reach meanwhile.
void ServerDialog::connect_now() {
  if (host_->text().trimmed().isEmpty() || base_->text().trimmed().isEmpty())
    return show_failure("Donnez le nom du serveur et celui de la base.");
  QString failure;
  failure_->setText("Connexion en cours…");
  failure_->show();
  {
    setEnabled(false);
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    const auto again = qScopeGuard([this] {
      QGuiApplication::restoreOverrideCursor();
      setEnabled(true);
    });
    repaint();
    failure = connect_(address());
  }
  if (failure.isEmpty()) return accept();
  show_failure(failure);
}

}  // namespace velanor::app
