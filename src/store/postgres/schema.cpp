#include "store/postgres/schema.h"

#include "store/postgres/failure.h"

namespace velanor::store::postgres {
namespace {

// The roles belong to the server, the rest to a base. Whoever runs this must be able to act as the owner.
constexpr const char* kPrologue = R"sql(
BEGIN;
SET LOCAL client_min_messages = warning;
SELECT pg_advisory_xact_lock(1986358895, 2);
DO $do$
DECLARE
  wanted text;
BEGIN
  FOREACH wanted IN ARRAY ARRAY['velanor_owner', 'velanor_clerk'] LOOP
    BEGIN
      EXECUTE format('CREATE ROLE %I NOLOGIN', wanted);
    EXCEPTION WHEN duplicate_object OR unique_violation THEN
      NULL;
    END;
  END LOOP;
  IF NOT pg_has_role(current_user, 'velanor_owner', 'MEMBER') THEN
    EXECUTE format('GRANT velanor_owner TO %I', current_user);
  END IF;
END
$do$;
CREATE SCHEMA IF NOT EXISTS velanor AUTHORIZATION velanor_owner;
SET LOCAL ROLE velanor_owner;
CREATE TABLE IF NOT EXISTS velanor.schema(version integer NOT NULL);
)sql";

constexpr const char* kEpilogue = R"sql(
COMMIT;
)sql";

// `tail` is the id backwards, so that the ids with a common end stand together. A deleted record keeps its
// row, without content: the row's lock orders those who write one id, and its numbers go on. `token` names
// the write, so that one whose answer was lost is found again. Triggers keep history and revisions right
// whoever writes; the revision of a file moves when a change is committed, and only then is it locked.
constexpr const char* kVersion1 = R"sql(
CREATE TABLE velanor.file(
  number integer GENERATED ALWAYS AS IDENTITY PRIMARY KEY,
  name bytea NOT NULL UNIQUE CHECK (octet_length(name) BETWEEN 1 AND 500),
  revision bigint NOT NULL DEFAULT 1
);
CREATE TABLE velanor.stored(
  file integer NOT NULL REFERENCES velanor.file,
  id bytea NOT NULL CHECK (octet_length(id) BETWEEN 1 AND 2000),
  tail bytea NOT NULL,
  content bytea,
  deleted boolean GENERATED ALWAYS AS (content IS NULL) STORED,
  version bigint NOT NULL,
  author bytea NOT NULL CHECK (octet_length(author) <= 500),
  time timestamptz,
  token bigint
);
CREATE UNIQUE INDEX stored_by_id ON velanor.stored(file, id) INCLUDE (deleted);
CREATE INDEX stored_by_tail ON velanor.stored(file, tail);
CREATE INDEX stored_deleted ON velanor.stored(file) WHERE deleted;
CREATE TABLE velanor.history(
  file integer NOT NULL,
  id bytea NOT NULL,
  version bigint NOT NULL,
  author bytea NOT NULL,
  time timestamptz,
  until timestamptz NOT NULL,
  content bytea,
  token bigint,
  PRIMARY KEY (file, id, version)
);

CREATE FUNCTION velanor.keep() RETURNS trigger
LANGUAGE plpgsql SECURITY DEFINER SET search_path = velanor, pg_temp AS $body$
BEGIN
  IF TG_OP = 'INSERT' AND NEW.version IS NOT NULL THEN
    RETURN NEW;  -- brought from another base with its number; a clerk may not give one
  END IF;
  NEW.author := coalesce(NEW.author, convert_to(session_user, 'UTF8'));
  NEW.time := clock_timestamp();
  NEW.version := 1;
  IF TG_OP = 'UPDATE' THEN
    NEW.version := OLD.version + 1;
    INSERT INTO history(file, id, version, author, time, until, content, token)
    VALUES (OLD.file, OLD.id, OLD.version, OLD.author, OLD.time, NEW.time, OLD.content, OLD.token);
  END IF;
  RETURN NEW;
END
$body$;
CREATE TRIGGER keep BEFORE INSERT OR UPDATE ON velanor.stored FOR EACH ROW EXECUTE FUNCTION velanor.keep();

-- Runs at the commit, once for each row written. One commit at a time moves revisions, so none waits for
-- another in a circle. Of a change of very many records only their files are told.
CREATE FUNCTION velanor.tell() RETURNS trigger
LANGUAGE plpgsql SECURITY DEFINER SET search_path = velanor, pg_temp AS $body$
DECLARE
  touched text := coalesce(current_setting('velanor.touched', true), '');
  told integer := coalesce(nullif(current_setting('velanor.told', true), ''), '0');
  name text := (SELECT encode(f.name, 'hex') FROM file f WHERE f.number = NEW.file);
BEGIN
  IF strpos(touched, ',' || NEW.file || ',') = 0 THEN
    PERFORM pg_advisory_xact_lock(1986358895, 1);
    UPDATE file SET revision = revision + 1 WHERE number = NEW.file;
    PERFORM set_config('velanor.touched', touched || ',' || NEW.file || ',', true);
  END IF;
  IF told < 100 THEN
    PERFORM pg_notify('velanor', name || ' ' || encode(NEW.id, 'hex') || ' ' || encode(NEW.author, 'hex'));
  ELSE
    PERFORM pg_notify('velanor', name || '  ' || encode(NEW.author, 'hex'));
  END IF;
  PERFORM set_config('velanor.told', (told + 1)::text, true);
  RETURN NULL;
END
$body$;
CREATE CONSTRAINT TRIGGER tell AFTER INSERT OR UPDATE ON velanor.stored DEFERRABLE INITIALLY DEFERRED
FOR EACH ROW EXECUTE FUNCTION velanor.tell();

-- Writes a record, or deletes it (no content), where what stands there is as expected: 0 anything, 1 nothing,
-- 2 the record `p_expected`. Returns 0 where it is not, 1 where there was nothing to change, 2 when it is
-- done. `p_again`: this very write was sent before, and nobody knows whether it was done.
CREATE FUNCTION velanor.put(p_file bytea, p_id bytea, p_tail bytea, p_content bytea, p_kind bigint,
  p_expected bytea, p_author bytea, p_token bigint, p_again bigint) RETURNS integer
LANGUAGE plpgsql SET search_path = velanor, pg_temp AS $body$
DECLARE
  n integer := (SELECT number FROM file WHERE name = p_file);
  old stored%ROWTYPE;
BEGIN
  IF p_again <> 0 AND (
    EXISTS (SELECT FROM stored WHERE file = n AND id = p_id AND token = p_token) OR
    EXISTS (SELECT FROM history WHERE file = n AND id = p_id AND token = p_token)) THEN
    RETURN 2;
  END IF;
  IF n IS NULL AND (p_content IS NULL OR p_kind = 2) THEN
    RETURN CASE WHEN p_kind = 2 THEN 0 ELSE 1 END;
  END IF;
  IF n IS NULL THEN
    -- Two changes that make the same files in different order would wait for each other.
    PERFORM pg_advisory_xact_lock(1986358895, 3);
    INSERT INTO file(name) VALUES (p_file) ON CONFLICT DO NOTHING;
    SELECT number INTO n FROM file WHERE name = p_file;
  END IF;
  SELECT * INTO old FROM stored WHERE file = n AND id = p_id FOR UPDATE;
  IF NOT FOUND AND p_content IS NOT NULL AND p_kind <> 2 THEN
    INSERT INTO stored(file, id, tail, content, author, token)
    VALUES (n, p_id, p_tail, p_content, p_author, p_token) ON CONFLICT DO NOTHING;
    IF FOUND THEN
      RETURN 2;
    END IF;
    SELECT * INTO old FROM stored WHERE file = n AND id = p_id FOR UPDATE;
  END IF;
  IF p_kind = 1 AND old.content IS NOT NULL OR p_kind = 2 AND old.content IS DISTINCT FROM p_expected THEN
    RETURN 0;
  END IF;
  IF old.content IS NOT DISTINCT FROM p_content THEN
    RETURN 1;
  END IF;
  UPDATE stored SET content = p_content, author = p_author, token = p_token WHERE file = n AND id = p_id;
  RETURN 2;
END
$body$;

-- Nothing is open to everybody. A clerk deletes no row: a deletion is an update that leaves no content. The
-- history is written by the trigger alone, so nobody can write a record without it, or it without a record.
REVOKE ALL ON FUNCTION velanor.keep(), velanor.tell(), velanor.put(bytea, bytea, bytea, bytea, bigint,
  bytea, bytea, bigint, bigint) FROM PUBLIC;
GRANT USAGE ON SCHEMA velanor TO velanor_clerk;
GRANT SELECT ON velanor.schema, velanor.file, velanor.stored, velanor.history TO velanor_clerk;
GRANT INSERT (name) ON velanor.file TO velanor_clerk;
GRANT INSERT (file, id, tail, content, author, token), UPDATE (content, author, token) ON velanor.stored
  TO velanor_clerk;
GRANT EXECUTE ON FUNCTION velanor.put(bytea, bytea, bytea, bytea, bigint, bytea, bytea, bigint, bigint)
  TO velanor_clerk;
)sql";

constexpr const char* kSteps[] = {kVersion1};

// A step as a guarded block: taken once, whatever the base has seen before.
std::string guarded(std::size_t from, std::string_view step) {
  const std::string version = std::to_string(from);
  std::string block =
      "DO $step$\nBEGIN\nIF coalesce((SELECT max(version) FROM velanor.schema), 0) = " + version;
  block.append(" THEN\n").append(step);
  block.append("DELETE FROM velanor.schema;\nINSERT INTO velanor.schema VALUES (");
  return block.append(std::to_string(from + 1)).append(");\nEND IF;\nEND\n$step$;\n");
}

std::string refusal_of_later(std::size_t known) {
  return "DO $do$\nBEGIN\nIF (SELECT max(version) FROM velanor.schema) > " + std::to_string(known) +
         " THEN\nRAISE EXCEPTION 'Cette base a été préparée par une version plus récente du programme. "
         "Rien n''a été modifié ; employez cette version.';\nEND IF;\nEND\n$do$;\n";
}

DbError not_of_this_version(const Connection& connection, bool later) {
  return {
      kStoreFailure,
      "La base " + connection.place() +
          (later ? " a été préparée par une version plus récente du programme. Installez cette version pour "
                   "l'ouvrir ; la base n'a pas été modifiée."
                 : " a été préparée par une version plus ancienne du programme. Demandez à celui qui gère "
                   "le serveur d'y exécuter « velanorctl setup-server ».")};
}

}  // namespace

std::span<const char* const> schema_steps() { return kSteps; }

std::string setup_script(std::span<const char* const> steps) {
  std::string script =
      "-- La base des fiches du personnel sur un serveur PostgreSQL : tables, fonctions et rôles. À "
      "exécuter\n"
      "-- dans la base par un administrateur : velanorctl setup-server | psql -v ON_ERROR_STOP=1 BASE\n"
      "-- Une base déjà préparée reste comme elle est, une plus ancienne est mise à niveau.\n";
  script.append(kPrologue).append(refusal_of_later(steps.size()));
  for (std::size_t step = 0; step < steps.size(); ++step) script += guarded(step, steps[step]);
  return script.append(kEpilogue);
}

Rights check_schema(Connection& connection) {
  const Result found = connection.run(
      "SELECT coalesce(max(version), 0), "
      "pg_is_in_recovery() OR current_setting('transaction_read_only') = 'on' "
      "OR NOT has_column_privilege('velanor.stored', 'content', 'UPDATE') FROM velanor.schema");
  const auto version = found.number(0, 0), known = static_cast<std::int64_t>(std::size(kSteps));
  if (version != known) throw not_of_this_version(connection, version > known);
  return found.number(0, 1) != 0 ? Rights::kRead : Rights::kWrite;
}

}  // namespace velanor::store::postgres
